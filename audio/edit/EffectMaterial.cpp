// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/EffectMaterial.h"

#include <algorithm>
#include <vector>

#include "audio/edit/EditReader.h"
#include "audio/edit/ReadAhead.h"

namespace audio::edit {
namespace {

// An echo is a stream: it goes forwards by rendering, backwards by beginning anew.
class EchoReader : public FrameReader {
  public:
    EchoReader(const EditList& input, const dsp::EchoSettings& settings)
        : input_(input), settings_(settings) {
        begin();
    }

    std::size_t read(float* interleaved, std::size_t frames) override {
        const std::size_t got = sound_->read(interleaved, frames);
        echo_->process({interleaved, got * static_cast<std::size_t>(input_.shape().channels)});
        position_ += static_cast<std::int64_t>(got);
        return got;
    }

    void seek(std::int64_t frame) override {
        if (frame < position_) begin();
        std::vector<float> dropped(8192 * static_cast<std::size_t>(input_.shape().channels));
        while (position_ < frame)
            if (read(dropped.data(), static_cast<std::size_t>(
                                         std::min<std::int64_t>(8192, frame - position_))) == 0)
                return;
    }

  private:
    void begin() {
        const Shape shape = input_.shape();
        echo_ = std::make_unique<dsp::Echo>(settings_, shape.sampleRate, shape.channels);
        sound_ = std::make_unique<ReadAhead>(std::make_unique<EditReader>(input_), shape.channels);
        position_ = 0;
    }

    const EditList& input_;
    dsp::EchoSettings settings_;
    std::unique_ptr<dsp::Echo> echo_;
    std::unique_ptr<FrameReader> sound_;
    std::int64_t position_ = 0;
};

class MixReader : public FrameReader {
  public:
    MixReader(const EditList& sound, double soundFactor, const MixMaterial::Other& other)
        : sound_(sound),
          channels_(static_cast<std::size_t>(sound.shape().channels)),
          soundFactor_(soundFactor),
          other_(other.material->open()),
          otherFactor_(other.factor) {}

    std::size_t read(float* interleaved, std::size_t frames) override {
        const std::size_t got = sound_.read(interleaved, frames);
        mixed_.resize(got * channels_);
        readFully(*other_, mixed_.data(), got, static_cast<int>(channels_));
        dsp::mixInto({interleaved, got * channels_}, mixed_, soundFactor_, otherFactor_);
        return got;
    }

    void seek(std::int64_t frame) override {
        sound_.seek(frame);
        other_->seek(frame);
    }

  private:
    EditReader sound_;
    std::size_t channels_;
    double soundFactor_;
    std::unique_ptr<FrameReader> other_;
    double otherFactor_;
    std::vector<float> mixed_;
};

}  // namespace

EchoMaterial::EchoMaterial(EditList input, const dsp::EchoSettings& settings)
    : input_(std::move(input)), settings_(settings) {
    // Refuses bad settings now, not when the sound is rendered.
    dsp::Echo(settings_, input_.shape().sampleRate, input_.shape().channels);
}

std::unique_ptr<FrameReader> EchoMaterial::open() const {
    return std::make_unique<EchoReader>(input_, settings_);
}

std::unique_ptr<FrameReader> MixMaterial::open() const {
    return std::make_unique<MixReader>(sound_, soundFactor_, other_);
}

}  // namespace audio::edit
