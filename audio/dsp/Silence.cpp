// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Silence.h"

#include <algorithm>
#include <cmath>

namespace audio::dsp {

FrameRange audibleRange(const LoudnessMeter& meter, double threshold) {
    const FrameRange whole{0, meter.frames()};
    const double loudness = meter.gatedLoudness();
    if (!std::isfinite(loudness)) return whole;
    const double limit = loudness - std::fabs(threshold);
    const auto heard = [limit](float window) { return window >= limit; };
    const auto& windows = meter.windows();
    const auto first = std::find_if(windows.begin(), windows.end(), heard);
    if (first == windows.end()) return whole;
    const auto last = std::find_if(windows.rbegin(), windows.rend(), heard);
    const auto firstIndex = static_cast<std::size_t>(first - windows.begin());
    const auto lastIndex = static_cast<std::size_t>(windows.rend() - last) - 1;

    FrameRange kept = whole;
    if (firstIndex > 0) kept.start = meter.windowEnd(firstIndex - 1) - meter.stepFrames();
    if (lastIndex + 1 < windows.size())
        kept.end = meter.windowEnd(lastIndex + 1) - meter.windowFrames() + meter.stepFrames();
    // A sound so short that the silent windows on both sides meet: its own window stays.
    if (kept.start >= kept.end)
        kept = {meter.windowEnd(firstIndex) - meter.windowFrames(), meter.windowEnd(lastIndex)};
    return kept;
}

}  // namespace audio::dsp
