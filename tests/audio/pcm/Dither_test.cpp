// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/pcm/Dither.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "audio/pcm/Convert.h"

using namespace audio::pcm;

namespace {

template <typename Integer>
std::vector<Integer> dithered(std::vector<float> samples, SampleType type,
                              std::uint64_t index = 0) {
    std::vector<Integer> result(samples.size());
    addDither(samples, 8 * int(sizeof(Integer)), index);
    fromFloats(type, samples.data(), reinterpret_cast<std::byte*>(result.data()), samples.size());
    return result;
}

std::vector<std::int16_t> as16Bits(const std::vector<float>& samples, std::uint64_t index = 0) {
    return dithered<std::int16_t>(samples, SampleType::S16, index);
}

}  // namespace

TEST(Dither, IsTriangularWithinOneBit) {
    double sum = 0;
    double square = 0;
    float lowest = 0;
    float highest = 0;
    constexpr int count = 200000;
    for (int i = 0; i < count; ++i) {
        const float noise = ditherNoise(static_cast<std::uint64_t>(i));
        sum += noise;
        square += static_cast<double>(noise) * noise;
        lowest = std::min(lowest, noise);
        highest = std::max(highest, noise);
    }
    EXPECT_NEAR(sum / count, 0.0, 0.005);
    EXPECT_NEAR(square / count, 1.0 / 6.0, 0.003);  // the variance of a triangle over (-1, 1)
    EXPECT_LT(lowest, -0.98F);
    EXPECT_GT(highest, 0.98F);
    EXPECT_LE(highest, 1.0F);
}

TEST(Dither, KeepsWhatIsSmallerThanABitAudible) {
    const std::vector<float> third(100000, 1.0F / 3.0F / 32768.0F);
    double sum = 0;
    for (const std::int16_t value : as16Bits(third)) sum += value;
    EXPECT_NEAR(sum / 100000, 1.0 / 3.0, 0.01);
}

TEST(Dither, LeavesDigitalSilenceAlone) {
    for (const std::int16_t value : as16Bits(std::vector<float>(1000))) EXPECT_EQ(value, 0);
    for (const std::uint8_t value : dithered<std::uint8_t>(std::vector<float>(100), SampleType::U8))
        EXPECT_EQ(value, 128);
}

TEST(Dither, DoesNotDependOnTheBlocks) {
    std::vector<float> samples(1000);
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = std::sin(0.01F * i);
    const auto whole = as16Bits(samples);
    auto pieces = as16Bits({samples.begin(), samples.begin() + 300});
    const auto rest = as16Bits({samples.begin() + 300, samples.end()}, 300);
    pieces.insert(pieces.end(), rest.begin(), rest.end());
    EXPECT_EQ(whole, pieces);
}

TEST(Dither, LimitsAndNeverWraps) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    const std::vector<float> loud{2.0F, -2.0F, 1e30F, -1e30F, infinite, -infinite, nan};
    EXPECT_EQ(as16Bits(loud),
              (std::vector<std::int16_t>{32767, -32768, 32767, -32768, 32767, -32768, 0}));
}
