// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "audio/mpeg/read/FrameHeader.h"
#include "audio/mpeg/read/SideInfo.h"

namespace audio::mpeg {

/// A Layer III frame with its own main data, wherever the bit reservoir had put it: what can be
/// moved into another stream. A plain value.
struct LogicalFrame {
    FrameHeader header;
    SideInfo info;
    std::array<std::uint8_t, 32> sideInfo{};
    std::vector<std::uint8_t> main;  ///< exactly the bytes the side information counts
};

/// Takes a stream of whole Layer III frames that begins with an empty reservoir apart. Throws
/// platform::Error where the bytes are not such a stream.
std::vector<LogicalFrame> takeApart(std::span<const std::uint8_t> stream);

}  // namespace audio::mpeg
