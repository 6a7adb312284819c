// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Gain.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace audio::dsp {

double GainRamp::factorAt(std::int64_t frame) const {
    if (frames <= 1) return first;
    return first + (last - first) * static_cast<double>(frame) / static_cast<double>(frames - 1);
}

void applyGain(std::span<float> samples, double factor) {
    const float gain = static_cast<float>(factor);
    for (float& sample : samples) sample *= gain;
}

void applyRamp(std::span<float> interleaved, int channels, const GainRamp& ramp,
               std::int64_t offset) {
    if (ramp.first == ramp.last) return applyGain(interleaved, ramp.first);
    const std::size_t frameSize = static_cast<std::size_t>(channels);
    float* sample = interleaved.data();
    for (std::size_t frame = 0; frame < interleaved.size() / frameSize; ++frame) {
        const float gain =
            static_cast<float>(ramp.factorAt(offset + static_cast<std::int64_t>(frame)));
        for (std::size_t channel = 0; channel < frameSize; ++channel) *sample++ *= gain;
    }
}

void applyRampToChannel(std::span<float> interleaved, int channels, int channel,
                        const GainRamp& ramp, std::int64_t offset) {
    const std::size_t frameSize = static_cast<std::size_t>(channels);
    for (std::size_t i = static_cast<std::size_t>(channel); i < interleaved.size(); i += frameSize)
        interleaved[i] *= static_cast<float>(ramp.factorAt(offset++));
}

// Several maxima side by side, which the compiler keeps in vectors.
float peak(std::span<const float> samples) {
    constexpr std::size_t lanes = 16;
    std::array<float, lanes> highest{};
    while (samples.size() >= lanes) {
        for (std::size_t i = 0; i < lanes; ++i)
            highest[i] = std::max(highest[i], std::fabs(samples[i]));
        samples = samples.subspan(lanes);
    }
    for (const float sample : samples) highest[0] = std::max(highest[0], std::fabs(sample));
    return *std::max_element(highest.begin(), highest.end());
}

void raisePeaks(std::span<const float> interleaved, std::span<float> peaks) {
    const std::size_t channels = peaks.size();
    for (std::size_t channel = 0; channel < channels; ++channel) {
        float highest = peaks[channel];
        for (std::size_t i = channel; i < interleaved.size(); i += channels)
            highest = std::max(highest, std::fabs(interleaved[i]));
        peaks[channel] = highest;
    }
}

void mixInto(std::span<float> sound, std::span<const float> other, double soundFactor,
             double otherFactor) {
    const float soundGain = static_cast<float>(soundFactor);
    const float otherGain = static_cast<float>(otherFactor);
    const std::size_t count = std::min(sound.size(), other.size());
    for (std::size_t i = 0; i < count; ++i) sound[i] = sound[i] * soundGain + other[i] * otherGain;
}

}  // namespace audio::dsp
