// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace audio::vorbis {

/// Where a channel of Vorbis (I, section 4.3.9) lies in WAVE's order of speakers, by the number of
/// channels. Beyond eight the order is the file's own affair.
constexpr std::array<std::array<std::size_t, 8>, 8> waveOrder = {{{0},
                                                                  {0, 1},
                                                                  {0, 2, 1},
                                                                  {0, 1, 2, 3},
                                                                  {0, 2, 1, 3, 4},
                                                                  {0, 2, 1, 4, 5, 3},
                                                                  {0, 2, 1, 5, 6, 4, 3},
                                                                  {0, 2, 1, 6, 7, 4, 5, 3}}};

/// The place of a channel of Vorbis among interleaved samples.
constexpr std::size_t placeInWave(std::size_t channel, std::size_t channels) {
    return channels >= 1 && channels <= 8 ? waveOrder[channels - 1][channel] : channel;
}

}  // namespace audio::vorbis
