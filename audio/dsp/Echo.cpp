// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Echo.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "audio/dsp/Gain.h"
#include "platform/Error.h"

namespace audio::dsp {

Echo::Echo(const EchoSettings& settings, int sampleRate, int channels)
    : settings_(settings),
      channels_(static_cast<std::size_t>(channels)),
      smoothing_(static_cast<float>(
          1.0 - std::exp(-2.0 * std::numbers::pi * settings.cutoff / sampleRate))) {
    if (settings.delay < 1) throw platform::Error("An echo needs a delay of at least one frame.");
    if (settings.repeats < 0 || settings.repeats > 1000)
        throw platform::Error("An echo repeats 0 to 1000 times.");
    if (!(settings.cutoff > 0)) throw platform::Error("An echo needs a cutoff above 0 Hz.");
    double level = settings.depth;
    for (int k = 0; k < settings.repeats; ++k, level *= settings.decay) {
        Repeat repeat;
        repeat.line.resize(static_cast<std::size_t>(settings.delay) * channels_);
        repeat.filtered.resize(channels_);
        repeat.level = static_cast<float>(level);
        repeats_.push_back(std::move(repeat));
    }
}

void Echo::process(std::span<float> interleaved) {
    const std::size_t lineSize = static_cast<std::size_t>(settings_.delay) * channels_;
    // In stretches that do not wrap around the delay lines and stay in the processor's cache.
    const std::size_t longest = 4096 * channels_;
    while (!interleaved.empty()) {
        const std::size_t count = std::min({interleaved.size(), lineSize - cursor_, longest});
        const std::span<float> output = interleaved.first(count);
        signal_.assign(output.begin(), output.end());
        applyGain(output, settings_.dry);
        for (Repeat& repeat : repeats_) addRepeat(repeat, signal_, output);
        cursor_ = (cursor_ + count) % lineSize;
        interleaved = interleaved.subspan(count);
    }
}

// Swaps the stretch with what came D frames before it, low-passes that in place as the input of the
// next repeat, and adds it to the output.
void Echo::addRepeat(Repeat& repeat, std::span<float> signal, std::span<float> output) {
    std::swap_ranges(signal.begin(), signal.end(),
                     repeat.line.begin() + static_cast<std::ptrdiff_t>(cursor_));
    const float keep = 1.0F - smoothing_;
    for (std::size_t channel = 0; channel < channels_; ++channel) {
        float last = repeat.filtered[channel];
        for (std::size_t i = channel; i < signal.size(); i += channels_) {
            last = keep * last + smoothing_ * signal[i];
            signal[i] = last;
        }
        // A tail that has died away must not slow the processor down with denormal numbers.
        repeat.filtered[channel] = std::fabs(last) < 1e-20F ? 0.0F : last;
    }
    const float level = repeat.level;
    for (std::size_t i = 0; i < signal.size(); ++i) output[i] += level * signal[i];
}

}  // namespace audio::dsp
