// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "audio/FrameRange.h"
#include "audio/dsp/WindowGrid.h"

namespace audio::dsp {

/// LUFS of windows [first, first + count) of a grid.
using MeasureWindows = std::function<std::vector<float>(std::size_t first, std::size_t count)>;

/// What is left of a sound when the silence at its ends goes: the frames of the leading and the
/// trailing windows that lie more than |threshold| LU below the sound's own gated loudness (LUFS)
/// and below −50 LUFS. One step of the window stays at each end, so that no attack is clipped. So a
/// quiet recording is not eaten, a faded tail is once it cannot be heard, and a soft start before a
/// loud song stays. The whole range where the sound is silent throughout or too
/// short to be measured. Windows are asked for from both ends inwards until one is heard; what
/// `windows` throws passes through.
FrameRange audibleRange(const WindowGrid& grid, double gatedLoudness, double threshold,
                        const MeasureWindows& windows);

}  // namespace audio::dsp
