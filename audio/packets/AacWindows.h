// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace audio::packets {

/// Whether the windows of two AAC-LC packets end alike in every channel (ISO/IEC 14496-3, 4.6.11):
/// with a slope of the same length and shape, so that either can stand before the packet that
/// followed the other. False also where that cannot be told: where the windows of two channels are
/// described apart, the second lies behind what only a decoder gets through.
bool windowsEndAlike(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b);

}  // namespace audio::packets
