// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Echo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "audio/dsp/Gain.h"
#include "platform/Error.h"

namespace audio::dsp {
namespace {

/// A stretch of interleaved sound and, per channel, what the low-pass put out last.
struct Signal {
    std::span<float> samples;
    std::span<float> last;
};

// The low-pass over `Channels` channels, of the `stride` that there are, of several signals of one
// length. Each is a chain in which one step waits for the one before, so they run side by side.
template <std::size_t Count, std::size_t Channels>
void lowPass(const std::array<Signal, Count>& signals, std::size_t first, std::size_t stride,
             float smoothing) {
    const float keep = 1.0F - smoothing;
    float last[Count][Channels];
    for (std::size_t s = 0; s < Count; ++s)
        for (std::size_t c = 0; c < Channels; ++c) last[s][c] = signals[s].last[first + c];
    const std::size_t size = signals[0].samples.size();
    for (std::size_t i = first; i < size; i += stride)
        for (std::size_t s = 0; s < Count; ++s) {
            float* const frame = signals[s].samples.data() + i;
            for (std::size_t c = 0; c < Channels; ++c) {
                last[s][c] = keep * last[s][c] + smoothing * frame[c];
                frame[c] = last[s][c];
            }
        }
    // A tail that has died away must not slow the processor down with denormal numbers.
    for (std::size_t s = 0; s < Count; ++s)
        for (std::size_t c = 0; c < Channels; ++c)
            signals[s].last[first + c] = std::fabs(last[s][c]) < 1e-20F ? 0.0F : last[s][c];
}

template <std::size_t Count>
void filter(const std::array<Signal, Count>& signals, std::size_t channels, float smoothing) {
    std::size_t first = 0;
    for (; first + 1 < channels; first += 2) lowPass<Count, 2>(signals, first, channels, smoothing);
    if (first < channels) lowPass<Count, 1>(signals, first, channels, smoothing);
}

}  // namespace

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
        std::size_t next = 0;
        for (; next + 1 < repeats_.size(); next += 2)
            addTwo(repeats_[next], repeats_[next + 1], output);
        if (next < repeats_.size()) addRepeat(repeats_[next], output);
        cursor_ = (cursor_ + count) % lineSize;
        interleaved = interleaved.subspan(count);
    }
}

// Swaps the stretch with what came D frames before it, low-passes that in place as the input of the
// next repeat, and adds it to the output.
void Echo::addRepeat(Repeat& repeat, std::span<float> output) {
    std::swap_ranges(signal_.begin(), signal_.end(), lineOf(repeat));
    const Signal signal{signal_, repeat.filtered};
    filter<1>({signal}, channels_, smoothing_);
    const float level = repeat.level;
    for (std::size_t i = 0; i < output.size(); ++i) output[i] += level * signal_[i];
}

// What the second repeat repeats has passed the first one D frames ago, so both can be filtered at
// once, and a processor does the one while it waits for the other.
void Echo::addTwo(Repeat& first, Repeat& second, std::span<float> output) {
    std::swap_ranges(signal_.begin(), signal_.end(), lineOf(first));
    second_.assign(lineOf(second), lineOf(second) + static_cast<std::ptrdiff_t>(output.size()));
    filter<2>({Signal{signal_, first.filtered}, Signal{second_, second.filtered}}, channels_,
              smoothing_);
    const float firstLevel = first.level;
    const float secondLevel = second.level;
    for (std::size_t i = 0; i < output.size(); ++i)
        output[i] = output[i] + firstLevel * signal_[i] + secondLevel * second_[i];
    std::copy(signal_.begin(), signal_.end(), lineOf(second));
    signal_.swap(second_);
}

std::vector<float>::iterator Echo::lineOf(Repeat& repeat) const {
    return repeat.line.begin() + static_cast<std::ptrdiff_t>(cursor_);
}

}  // namespace audio::dsp
