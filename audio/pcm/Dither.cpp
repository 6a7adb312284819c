// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/pcm/Dither.h"

namespace audio::pcm {
namespace {

constexpr std::uint64_t seed = 0x5EED0F5071D17E12;

// The finaliser of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators).
std::uint64_t scramble(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EB;
    return x ^ (x >> 31);
}

}  // namespace

float ditherNoise(std::uint64_t sampleIndex) {
    const std::uint64_t bits = scramble(seed ^ sampleIndex);
    constexpr float scale = 1.0F / 4294967296.0F;
    // The difference of two even distributions over [0, 1) is the triangular one over (−1, 1).
    return (static_cast<float>(static_cast<std::uint32_t>(bits)) -
            static_cast<float>(static_cast<std::uint32_t>(bits >> 32))) *
           scale;
}

void addDither(std::span<float> samples, int bits, std::uint64_t firstIndex) {
    const float step = 1.0F / static_cast<float>(1 << (bits - 1));
    for (float& sample : samples) {
        sample += sample == 0.0F ? 0.0F : step * ditherNoise(firstIndex);
        ++firstIndex;
    }
}

}  // namespace audio::pcm
