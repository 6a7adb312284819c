// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/SoundSource.h"

#include "audio/read/Decoder.h"
#include "platform/Paths.h"

namespace player {
namespace {

class DecoderSource final : public SoundSource {
  public:
    explicit DecoderSource(const QString& path) : decoder_(platform::toPath(path)) {}
    int rate() const override { return decoder_.format().sampleRate; }
    int channels() const override { return decoder_.format().channels; }
    std::int64_t position() const override { return decoder_.position(); }
    std::int64_t frames() override { return decoder_.frames(); }
    std::size_t read(float* interleaved, std::size_t frames) override {
        return decoder_.read(interleaved, frames);
    }
    void seek(std::int64_t frame) override { decoder_.seek(frame); }

  private:
    audio::read::Decoder decoder_;
};

}  // namespace

std::unique_ptr<SoundSource> openWithDecoder(const QString& path) {
    return std::make_unique<DecoderSource>(path);
}

}  // namespace player
