// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Gain.h"

#include <algorithm>
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

float peak(std::span<const float> samples) {
    float highest = 0.0F;
    for (const float sample : samples) highest = std::max(highest, std::fabs(sample));
    return highest;
}

void raisePeaks(std::span<const float> interleaved, std::span<float> peaks) {
    for (std::size_t i = 0; i < interleaved.size(); ++i) {
        float& highest = peaks[i % peaks.size()];
        highest = std::max(highest, std::fabs(interleaved[i]));
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
