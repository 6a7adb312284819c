// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// Carries on LAME's CRC over more bytes (CRC-16/ARC: reflected 0xA001, starting at 0), which its
/// tag uses for the music and for the tag itself.
std::uint16_t lameCrc(std::uint16_t crc, std::span<const std::uint8_t> bytes);

/// Writes the CRC of a protected Layer III frame (CRC-16 0x8005, starting at 0xFFFF, over the last
/// two header bytes and the side information); does nothing where the header announces none.
void updateFrameCrc(const FrameHeader& header, std::span<std::uint8_t> frame);

}  // namespace audio::mpeg
