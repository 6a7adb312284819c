// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "audio/wave/Writer.h"
#include "audio/write/Sink.h"

namespace audio::write {

/// Writes PCM into a WAVE file.
class WaveSink : public Encoder::Sink {
  public:
    WaveSink(const std::filesystem::path& file, const Format& format,
             const EncoderOptions& options);

    void write(const float* interleaved, std::size_t frames) override;
    void writePcm(const std::byte* bytes, std::size_t frames) override;
    void copyPcm(std::int64_t firstFrame, std::int64_t frames,
                 const std::function<void(std::int64_t)>& copied) override;
    void finish() override { writer_.finish(); }

  private:
    std::size_t frameBytes() const { return channels_ * pcm::bytesPerSample(type_); }

    pcm::SampleType type_;
    std::size_t channels_;
    wave::Writer writer_;
    std::vector<std::byte> block_;
};

}  // namespace audio::write
