// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>

namespace support {

/// Says that this machine does not allow a test, and why; the test then returns. `./test` counts
/// what says so, and names the reasons.
inline void notHere(const char* reason) {
    std::printf("Could not run here: %s\n", reason);
    std::fflush(stdout);
}

}  // namespace support
