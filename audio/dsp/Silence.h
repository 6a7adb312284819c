// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "audio/dsp/Loudness.h"

namespace audio::dsp {

/// Frames [start, end).
struct FrameRange {
    std::int64_t start = 0;
    std::int64_t end = 0;
    bool operator==(const FrameRange&) const = default;
};

/// What is left of a measured sound when the silence at its ends goes: the frames of the leading
/// and the trailing windows that lie more than |threshold| LU below the sound's own gated loudness.
/// One step of the window stays at each end, so that no attack is clipped. So a quiet recording is
/// not eaten, and a faded tail is. The whole range where the sound is silent throughout or too
/// short to be measured.
FrameRange audibleRange(const LoudnessMeter& meter, double threshold);

}  // namespace audio::dsp
