// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>

namespace audio::pcm {

/// How many frames a block of floats holds: so many as are wanted, or fewer where there are so many
/// channels that it would take more than a megabyte.
constexpr std::size_t blockFrames(std::size_t wanted, int channels) {
    constexpr std::size_t mostSamples = (std::size_t{1} << 20) / sizeof(float);
    return std::clamp<std::size_t>(mostSamples / static_cast<std::size_t>(std::max(1, channels)), 1,
                                   wanted);
}

}  // namespace audio::pcm
