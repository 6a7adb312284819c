// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// Changes the level of a whole Layer II frame of MPEG-1 by so many steps of the cube root of two,
/// by its scale factors alone: every other bit stays, its CRC too, which does not cover them.
/// False, with the frame in an unknown state, where a factor would leave its range, the frame ends
/// before them, or it is of MPEG-2.
bool changeScaleFactors(const FrameHeader& header, std::span<std::uint8_t> frame, int steps);

}  // namespace audio::mpeg
