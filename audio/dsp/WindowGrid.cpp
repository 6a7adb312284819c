// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/WindowGrid.h"

#include <algorithm>

#include "platform/Error.h"

namespace audio::dsp {

std::int64_t framesOf(int sampleRate, double ms) {
    return static_cast<std::int64_t>(sampleRate * ms / 1000.0);
}

WindowGrid::WindowGrid(int sampleRate, double windowMs, std::int64_t frames)
    : windowMs_(windowMs),
      window_(framesOf(sampleRate, windowMs)),
      step_(std::max<std::int64_t>(1, window_ / 10)),
      frames_(frames) {
    if (!(windowMs > 0) || windowMs > 60000 || window_ < 1)
        throw platform::Error("The loudness window must be 1 to 60000 ms long.");
}

std::size_t WindowGrid::count() const {
    if (frames_ < window_) return 0;
    const std::int64_t whole = frames_ / step_ - (window_ + step_ - 1) / step_ + 1;
    return static_cast<std::size_t>(whole + (frames_ % step_ != 0 ? 1 : 0));
}

std::int64_t WindowGrid::end(std::size_t index) const {
    // The first window ends with the first step that completes it.
    const std::int64_t first = (window_ + step_ - 1) / step_ * step_;
    return std::min(frames_, first + static_cast<std::int64_t>(index) * step_);
}

}  // namespace audio::dsp
