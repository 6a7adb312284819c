// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace audio::dsp {

struct EchoSettings {
    std::int64_t delay = 0;  ///< D, frames, at least 1
    double dry = 1.0;        ///< factor of the sound itself
    double depth = 0.0;      ///< factor of the first repeat
    double decay = 0.0;      ///< factor from one repeat to the next
    double cutoff = 0.0;     ///< Hz, of the low-pass that each repeat passes once more
    int repeats = 0;         ///< how many, at most 1,000
};

/// Echo over a stream: output = dry · x + Σ (k = 1 … repeats) depth · decay^(k−1) · LPᵏ(x delayed
/// by k·D), where LP is the one-pole low-pass y[n] = y[n−1] + a (x[n] − y[n−1]), a = 1 −
/// e^(−2π·cutoff/rate). Low-passes and delays commute, so repeat k is repeat k − 1 delayed and
/// filtered again, and one delay line of D frames per repeat is all the memory there is.
/// Throws platform::Error for settings outside the ranges above.
class Echo {
  public:
    Echo(const EchoSettings& settings, int sampleRate, int channels);

    /// The next frames, in place. What came before the first call counts as silence.
    void process(std::span<float> interleaved);

  private:
    struct Repeat {
        std::vector<float> line;      ///< the last D frames of what this repeat repeats
        std::vector<float> filtered;  ///< the low-pass' last output, per channel
        float level = 0.0F;
    };
    void addRepeat(Repeat& repeat, std::span<float> output);
    std::vector<float>::iterator lineOf(Repeat& repeat) const;
    void addTwo(Repeat& first, Repeat& second, std::span<float> output);

    EchoSettings settings_;
    std::size_t channels_;
    float smoothing_;
    std::size_t cursor_ = 0;  ///< where all the delay lines stand, in samples
    std::vector<Repeat> repeats_;
    std::vector<float> signal_;  ///< the stretch in hand, as the repeats hand it on
    std::vector<float> second_;
};

}  // namespace audio::dsp
