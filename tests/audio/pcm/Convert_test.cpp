// SPDX-License-Identifier: GPL-3.0-or-later
// Samples of every type as floats and back.
#include "audio/pcm/Convert.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

using namespace audio::pcm;

namespace {

constexpr SampleType everyType[] = {SampleType::U8,  SampleType::S16, SampleType::S24,
                                    SampleType::S32, SampleType::S64, SampleType::F32,
                                    SampleType::F64};

std::vector<float> thereAndBack(SampleType type, const std::vector<float>& samples) {
    std::vector<std::byte> bytes(samples.size() * bytesPerSample(type));
    fromFloats(type, samples.data(), bytes.data(), samples.size());
    std::vector<float> back(samples.size());
    toFloats(type, bytes.data(), back.data(), back.size());
    return back;
}

TEST(Convert, WhatFitsEightBitsComesBackFromEveryType) {
    std::vector<float> samples;
    for (int i = -128; i < 128; ++i) samples.push_back(static_cast<float>(i) / 128.0F);
    for (const SampleType type : everyType) EXPECT_EQ(thereAndBack(type, samples), samples);
}

TEST(Convert, AFloatComesBackFromWideTypes) {
    std::vector<float> samples;
    for (int i = 1; i < 200; ++i) samples.push_back(std::ldexp(1.0F + 1.0F / float(i), -i % 30));
    for (const SampleType type : {SampleType::S64, SampleType::F32, SampleType::F64}) {
        std::vector<float> inside;
        for (const float sample : samples)
            if (sample < 1.0F) inside.push_back(sample);
        EXPECT_EQ(thereAndBack(type, inside), inside);
    }
}

TEST(Convert, IntegersAreLimitedAndNeverWrap) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    const std::vector<float> loud{1.0F, 2.0F, -2.0F, 1e30F, -1e30F, infinite, -infinite, nan};
    const auto as = [&]<typename Integer>(SampleType type, Integer) {
        std::vector<Integer> out(loud.size());
        fromFloats(type, loud.data(), reinterpret_cast<std::byte*>(out.data()), loud.size());
        return out;
    };
    const auto limits = [&]<typename Integer>(Integer) {
        constexpr Integer high = std::numeric_limits<Integer>::max();
        constexpr Integer low = std::numeric_limits<Integer>::min();
        return std::vector<Integer>{high, high, low, high, low, high, low, 0};
    };
    EXPECT_EQ(as(SampleType::S16, std::int16_t{}), limits(std::int16_t{}));
    EXPECT_EQ(as(SampleType::S32, std::int32_t{}), limits(std::int32_t{}));
    EXPECT_EQ(as(SampleType::S64, std::int64_t{}), limits(std::int64_t{}));
}

TEST(Convert, CompressedSoundHasNoSamples) {
    float sample = 0;
    std::byte byte{};
    EXPECT_THROW(toFloats(SampleType::Lossy, &byte, &sample, 1), std::invalid_argument);
    EXPECT_THROW(fromFloats(SampleType::Lossy, &sample, &byte, 1), std::invalid_argument);
}

}  // namespace
