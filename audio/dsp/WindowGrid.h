// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace audio::dsp {

/// The whole frames of a stretch of time.
std::int64_t framesOf(int sampleRate, double ms);

/// Where the windows of a sound lie: each moved by a tenth of its length against the one before.
class WindowGrid {
  public:
    /// A window of `windowMs`, at most 60,000. Throws platform::Error where it holds no frame.
    WindowGrid(int sampleRate, double windowMs, std::int64_t frames);

    double windowMs() const { return windowMs_; }
    std::int64_t window() const { return window_; }  ///< frames
    std::int64_t step() const { return step_; }      ///< frames
    std::int64_t frames() const { return frames_; }  ///< of the sound
    std::size_t count() const;
    /// The frame behind window `index`: a multiple of the step, but for the last one's, which is
    /// the sound's end.
    std::int64_t end(std::size_t index) const;

  private:
    double windowMs_;
    std::int64_t window_;
    std::int64_t step_;
    std::int64_t frames_;
};

}  // namespace audio::dsp
