// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

/// Pure arithmetic on blocks of sound: interleaved 32-bit floats with full scale at ±1. Nothing
/// here knows of files, threads or time; nothing is limited to full scale, which is the business of
/// whoever writes integers.
namespace audio::dsp {

/// A gain that runs in a straight line over `frames` frames: the first frame has the factor
/// `first`, the last one `last`. A single frame has `first`.
struct GainRamp {
    double first = 1.0;
    double last = 1.0;
    std::int64_t frames = 0;

    double factorAt(std::int64_t frame) const;
    bool operator==(const GainRamp&) const = default;
};

/// Multiplies every sample.
void applyGain(std::span<float> samples, double factor);

/// Multiplies interleaved frames by the part of the ramp that begins at its frame `offset`.
void applyRamp(std::span<float> interleaved, int channels, const GainRamp& ramp,
               std::int64_t offset);

/// The same on one channel, the others left alone.
void applyRampToChannel(std::span<float> interleaved, int channels, int channel,
                        const GainRamp& ramp, std::int64_t offset);

/// The highest absolute sample; 0 for none.
float peak(std::span<const float> samples);
/// Raises `peaks`, one per channel, to the highest absolute samples of interleaved frames.
void raisePeaks(std::span<const float> interleaved, std::span<float> peaks);

/// sound = sound × soundFactor + other × otherFactor, over the shorter of both.
void mixInto(std::span<float> sound, std::span<const float> other, double soundFactor,
             double otherFactor);

}  // namespace audio::dsp
