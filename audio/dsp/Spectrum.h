// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace audio::dsp {

/// The spectrum of a short stretch of sound, in bands for a display. One thread at a time.
class Spectrum {
  public:
    /// Frames that one analysis takes: 46 ms at 44.1 kHz.
    static constexpr std::size_t kWindow = 2048;

    Spectrum();
    ~Spectrum();
    Spectrum(const Spectrum&) = delete;
    Spectrum& operator=(const Spectrum&) = delete;

    /// Fills `bands`, spaced evenly in pitch from 40 Hz to 16 kHz (or half the rate), from low to
    /// high: the loudest part of each band, 0 for -72 dB of a full-scale sine and below, 1 for 0
    /// dB. `mono` holds kWindow frames at `rate` Hz.
    void analyse(std::span<const float> mono, int rate, std::span<float> bands);

  private:
    class Transform;
    std::unique_ptr<Transform> transform_;
    std::vector<float> window_;  // Hann
    std::vector<float> input_;
    std::vector<float> power_;  // by bin; a full-scale sine has 1
};

}  // namespace audio::dsp
