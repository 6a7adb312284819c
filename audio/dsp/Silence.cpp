// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Silence.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace audio::dsp {
namespace {

// Windows asked for at first; each time none of them is heard, twice as many.
constexpr std::size_t firstSpan = 200;

// LUFS. What is louder a person hears, however loud the rest of the sound is.
constexpr double audibleLoudness = -50;

template <typename Heard>
std::optional<std::size_t> firstHeard(std::size_t count, const MeasureWindows& windows,
                                      Heard heard) {
    std::size_t span = firstSpan;
    for (std::size_t first = 0; first < count; first += span, span *= 2) {
        const std::vector<float> some = windows(first, std::min(span, count - first));
        const auto found = std::find_if(some.begin(), some.end(), heard);
        if (found != some.end()) return first + static_cast<std::size_t>(found - some.begin());
    }
    return std::nullopt;
}

// From the end back to window `lowest`, which is heard.
template <typename Heard>
std::size_t lastHeard(std::size_t lowest, std::size_t count, const MeasureWindows& windows,
                      Heard heard) {
    std::size_t span = firstSpan;
    for (std::size_t end = count; end > lowest + 1; span *= 2) {
        const std::size_t first = end - std::min(span, end - lowest - 1);
        const std::vector<float> some = windows(first, end - first);
        const auto found = std::find_if(some.rbegin(), some.rend(), heard);
        if (found != some.rend()) return first + static_cast<std::size_t>(some.rend() - found) - 1;
        end = first;
    }
    return lowest;
}

}  // namespace

FrameRange audibleRange(const WindowGrid& grid, double gatedLoudness, double threshold,
                        const MeasureWindows& windows) {
    const FrameRange whole{0, grid.frames()};
    if (!std::isfinite(gatedLoudness)) return whole;
    const double limit = std::min(gatedLoudness - std::fabs(threshold), audibleLoudness);
    const auto heard = [limit](float window) { return window >= limit; };
    const auto first = firstHeard(grid.count(), windows, heard);
    if (!first) return whole;
    const std::size_t last = lastHeard(*first, grid.count(), windows, heard);

    FrameRange kept = whole;
    if (*first > 0) kept.start = grid.end(*first - 1) - grid.step();
    if (last + 1 < grid.count()) kept.end = grid.end(last + 1) - grid.window() + grid.step();
    // A sound so short that the silent windows on both sides meet: its own window stays.
    if (kept.start >= kept.end) kept = {grid.end(*first) - grid.window(), grid.end(last)};
    return kept;
}

}  // namespace audio::dsp
