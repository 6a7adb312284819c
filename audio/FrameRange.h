// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace audio {

/// Frames [start, end).
struct FrameRange {
    std::int64_t start = 0;
    std::int64_t end = 0;
    bool operator==(const FrameRange&) const = default;
};

}  // namespace audio
