// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// Changes the level of a whole Layer II frame by so many steps of the cube root of two, by its
/// scale factors alone: every other bit stays, its CRC too, which does not cover them. False, with
/// the frame in an unknown state, where the frame ends before them or a factor would leave its
/// range. The lowest factor (-118 dBFS) is what encoders give to digital silence in subbands that
/// have bits, as at the end of a sound that does not fill its last frame: that cannot be made
/// softer, and left as it is would grow with the next change in the other direction.
bool changeScaleFactors(const FrameHeader& header, std::span<std::uint8_t> frame, int steps);

}  // namespace audio::mpeg
