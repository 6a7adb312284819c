// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/write/WaveSink.h"

#include <algorithm>

#include "audio/pcm/Convert.h"

namespace audio::write {
namespace {

constexpr std::size_t blockFrames = 8'192;

wave::SoundFormat waveFormat(const Format& format) {
    const bool floating =
        format.sampleType == pcm::SampleType::F32 || format.sampleType == pcm::SampleType::F64;
    wave::SoundFormat sound;
    sound.tag = floating ? wave::formatTagFloat : wave::formatTagPcm;
    sound.channels = format.channels;
    sound.sampleRate = format.sampleRate;
    sound.bitsPerSample = 8 * static_cast<int>(pcm::bytesPerSample(format.sampleType));
    sound.validBits = format.bitsPerSample;
    if (sound.validBits < 1 || sound.validBits > sound.bitsPerSample)
        sound.validBits = sound.bitsPerSample;
    sound.channelMask = static_cast<std::uint32_t>(format.channelMask);
    sound.blockAlign = format.channels * static_cast<int>(pcm::bytesPerSample(format.sampleType));
    return sound;
}

/// A model of another format, or one that is no WAVE file at all, gives its chunks at most.
wave::Plan planFor(const Format& format, const EncoderOptions& options) {
    wave::Plan plan;
    plan.format = waveFormat(format);
    plan.copyChunks = options.copyWaveChunks;
    if (options.expectedFrames >= 0)
        plan.dataBytes = options.expectedFrames * plan.format.blockAlign;
    if (!options.waveModel.empty() && wave::looksLikeWave(options.waveModel)) {
        plan.model = options.waveModel;
        const wave::Layout model = wave::readLayout(options.waveModel);
        plan.repeatFormat = model.format.sampleType() == format.sampleType &&
                            model.format.channels == format.channels &&
                            model.format.sampleRate == format.sampleRate;
    }
    return plan;
}

}  // namespace

WaveSink::WaveSink(const std::filesystem::path& file, const Format& format,
                   const EncoderOptions& options)
    : type_(format.sampleType),
      channels_(static_cast<std::size_t>(format.channels)),
      writer_(file, planFor(format, options)) {}

void WaveSink::write(const float* interleaved, std::size_t frames) {
    while (frames > 0) {
        const std::size_t count = std::min(frames, blockFrames);
        const std::size_t samples = count * channels_;
        block_.resize(samples * pcm::bytesPerSample(type_));
        pcm::fromFloats(type_, interleaved, block_.data(), samples);
        writer_.write(block_.data(), block_.size());
        interleaved += samples;
        frames -= count;
    }
}

void WaveSink::writePcm(const std::byte* bytes, std::size_t frames) {
    writer_.write(bytes, frames * frameBytes());
}

void WaveSink::copyPcm(std::int64_t firstFrame, std::int64_t frames,
                       const std::function<void(std::int64_t)>& copied) {
    const auto size = static_cast<std::int64_t>(frameBytes());
    std::int64_t bytes = 0;
    writer_.copySound(firstFrame * size, frames * size, [&](std::int64_t stretch) {
        const std::int64_t before = bytes / size;
        bytes += stretch;
        copied(bytes / size - before);
    });
}

}  // namespace audio::write
