// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "audio/mpeg/read/LogicalFrame.h"

namespace audio::mpeg {

/// New frames in a row that have to find room for their main data between what lies before and what
/// comes behind.
struct FitProblem {
    std::vector<LogicalFrame> frames;
    bool freeSlots = false;  ///< each frame may have any bit-rate, else the one it has
    int roomBefore = 0;      ///< bytes of reservoir that the frames before leave
    int needBehind = 0;      ///< bytes that must be left before the frame behind
    /// Encodes frames [first, first + count) of the row `steps` cheaper, for frames that do not
    /// fit.
    std::function<std::vector<LogicalFrame>(std::size_t first, std::size_t count, int steps)>
        cheaper;
};

/// A frame and the bit-rate and padding of its slot.
struct FittedFrame {
    LogicalFrame frame;
    FrameHeader slot;
};

/// Chooses slots, and cheaper encodings where there is no other way, at first only near both ends:
/// backwards what every frame needs before it, forwards the best that leaves the next one its need.
/// Returns nothing where even the cheapest do not fit.
std::vector<FittedFrame> fit(const FitProblem& problem);

}  // namespace audio::mpeg
