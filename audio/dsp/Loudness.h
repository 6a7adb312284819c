// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace audio::dsp {

/// The loudness of a sound and of a window that moves over it by a tenth of its length, by
/// ITU-R BS.1770 (libebur128). Memory: four bytes per step of the window.
class LoudnessMeter {
  public:
    /// `windowMs` > 0. Throws platform::Error for a rate or channel count that cannot be measured.
    LoudnessMeter(int sampleRate, int channels, double windowMs);
    ~LoudnessMeter();
    LoudnessMeter(const LoudnessMeter&) = delete;
    LoudnessMeter& operator=(const LoudnessMeter&) = delete;

    /// The next frames of the sound.
    void add(std::span<const float> interleaved);
    /// After the last frame: measures the last, shorter step too.
    void finish();

    std::int64_t windowFrames() const { return window_; }
    std::int64_t stepFrames() const { return step_; }
    std::int64_t frames() const { return frames_; }

    /// LUFS of window i, which ends at frame windowEnd(i); −∞ for silence.
    const std::vector<float>& windows() const { return windows_; }
    std::int64_t windowEnd(std::size_t index) const;

    /// The gated loudness of the whole sound in LUFS; −∞ where it is silent or shorter than one
    /// gating block of 400 ms.
    double gatedLoudness() const;

  private:
    struct State;
    void measureWindow();

    std::unique_ptr<State> state_;
    int channels_;
    double windowMs_;
    std::int64_t window_;
    std::int64_t step_;
    std::int64_t frames_ = 0;
    std::int64_t intoStep_ = 0;
    std::vector<float> windows_;
};

}  // namespace audio::dsp
