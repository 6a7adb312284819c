// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/parallel/Threads.h"

#include <algorithm>
#include <thread>

namespace audio::parallel {

int threadCount(int asked) {
    constexpr int most = 8;
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(asked > 0 ? asked : cores, 1, most);
}

}  // namespace audio::parallel
