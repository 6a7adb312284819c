// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/engine/EditorState.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "audio/edit/Resampled.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace effects {

Sound openSound(const QString& path) {
    Sound sound;
    sound.source = std::make_shared<audio::edit::SourceMaterial>(platform::toPath(path));
    sound.list = audio::edit::EditList(sound.source->shape(), sound.source);
    return sound;
}

audio::edit::MixMaterial::Other openForMix(const QString& path, audio::edit::Shape shape,
                                           float percent) {
    const auto file = std::make_shared<audio::edit::SourceMaterial>(platform::toPath(path));
    std::shared_ptr<const audio::edit::Material> material = file;
    if (file->shape() != shape)
        material = std::make_shared<audio::edit::ResampledMaterial>(file, file->shape(), shape);
    return {material, static_cast<double>(percent) / 100.0};
}

audio::Format wavFormat(std::int32_t rate, std::int32_t channels, std::int32_t bits) {
    if (rate < 1 || channels < 1 || channels > 255 || (bits != 8 && bits != 16))
        throw platform::Error("A WAV file cannot have " + std::to_string(rate) + " Hz, " +
                              std::to_string(channels) + " channels and " + std::to_string(bits) +
                              " bits.");
    audio::Format format;
    format.container = audio::Container::Wav;
    format.codec = audio::Codec::Pcm;
    format.containerName = "wav";
    format.codecName = bits == 8 ? "pcm_u8" : "pcm_s16le";
    format.sampleRate = rate;
    format.channels = channels;
    format.sampleType = bits == 8 ? audio::pcm::SampleType::U8 : audio::pcm::SampleType::S16;
    format.bitsPerSample = bits;
    format.bitRate = std::int64_t{rate} * channels * bits;
    return format;
}

audio::FrameRange rangeInside(const Selection& selection, std::int64_t length) {
    if (!selection.active) throw platform::Error("No part of the sound is selected.");
    const audio::FrameRange range{std::max<std::int64_t>(0, selection.start),
                                  std::min<std::int64_t>(length, selection.end)};
    if (range.start >= range.end)
        throw platform::Error(
            "There is no sound in the part that was to be changed: the sound is empty, or ends "
            "before it. Nothing was changed.");
    return range;
}

std::int32_t frameAt(std::int32_t milliseconds, int sampleRate) {
    const std::int64_t exact = std::int64_t{milliseconds} * sampleRate;
    const std::int64_t frame = (exact + (exact < 0 ? -500 : 500)) / 1000;
    if (frame < std::numeric_limits<std::int32_t>::min() ||
        frame > std::numeric_limits<std::int32_t>::max())
        throw platform::Error("A time of " + std::to_string(milliseconds) +
                              " ms lies beyond the longest sound.");
    return static_cast<std::int32_t>(frame);
}

void requireLevel(float percent) {
    if (!std::isfinite(percent) || percent < 0)
        throw platform::Error("A level must be a number of percent from 0 up.");
}

}  // namespace effects
