// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace audio::pcm {

/// Triangular noise in (−1, +1) least significant bits for the sample of this index. It is drawn
/// from a fixed seed and the index alone, so the same edit writes the same bytes however the sound
/// is cut into blocks.
float ditherNoise(std::uint64_t sampleIndex);

/// Adds the noise that samples get before they are rounded to integers of so many bits (at most
/// 24); digital silence stays digital silence. `firstIndex` is the index of the first sample in the
/// file, counted over all channels. Any thread.
void addDither(std::span<float> samples, int bits, std::uint64_t firstIndex);

}  // namespace audio::pcm
