// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace audio {

/// Bytes [begin, end) of a file; all of it where `end` is 0.
struct FilePart {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

}  // namespace audio
