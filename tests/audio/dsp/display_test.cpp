// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "audio/dsp/Peaks.h"
#include "audio/dsp/Spectrum.h"

namespace {

using audio::dsp::PeakMeter;
using audio::dsp::Spectrum;

TEST(Peaks, TheExtremesOfEverySpanOverAllChannels) {
    PeakMeter meter(1000, 2, 10);
    std::vector<float> sound(2000, 0.0F);
    sound[0] = 0.5F;         // frame 0, left
    sound[2 * 99 + 1] = -1;  // frame 99, right: the last of the first span
    sound[2 * 100] = 0.25F;  // the first of the second
    sound[2 * 999] = -0.75F;
    for (std::size_t at = 0; at < 1000; at += 125) meter.add(sound.data() + 2 * at, 125);
    const auto& peaks = meter.peaks();
    ASSERT_EQ(peaks.columns.size(), 10U);
    EXPECT_EQ(peaks.columns[0].high, 0.5F);
    EXPECT_EQ(peaks.columns[0].low, -1.0F);
    EXPECT_EQ(peaks.columns[1].high, 0.25F);
    EXPECT_EQ(peaks.columns[1].low, 0.0F);
    EXPECT_EQ(peaks.columns[9].low, -0.75F);
    EXPECT_EQ(peaks.measured, 1.0);
}

TEST(Peaks, ShortEmptyAndLongerThanStated) {
    PeakMeter none(0, 2, 10);
    const float frame[4] = {1, 1, 1, 1};
    none.add(frame, 2);
    EXPECT_TRUE(none.peaks().columns.empty());
    PeakMeter three(3, 1, 10);
    three.add(frame, 4);
    EXPECT_EQ(three.peaks().columns.size(), 3U);
    PeakMeter half(8, 1, 4);
    half.add(frame, 4);
    EXPECT_EQ(half.peaks().measured, 0.5);
    EXPECT_EQ(half.peaks().columns[3].high, 0.0F);
}

std::vector<float> sine(double frequency, double level, int rate) {
    std::vector<float> sound(Spectrum::kWindow);
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = float(level * std::sin(2 * std::numbers::pi * frequency * double(i) / rate));
    return sound;
}

TEST(Spectrum, ASineStandsInItsBandAtItsLevel) {
    Spectrum spectrum;
    std::vector<float> bands(24);
    for (const double frequency : {100.0, 1000.0, 10000.0}) {
        spectrum.analyse(sine(frequency, 1, 44100), 44100, bands);
        const auto loudest = std::max_element(bands.begin(), bands.end());
        const double expected = 24 * std::log(frequency / 40) / std::log(16000.0 / 40);
        EXPECT_NEAR(double(loudest - bands.begin()), expected, 1.0) << frequency;
        EXPECT_NEAR(*loudest, 1.0F, 0.03F) << frequency;
    }
    spectrum.analyse(sine(1000, 0.01, 44100), 44100, bands);  // -40 dB
    EXPECT_NEAR(*std::max_element(bands.begin(), bands.end()), 1 - 40.0 / 72, 0.03);
}

TEST(Spectrum, SilenceIsZeroAndLowRatesHaveNoBandPastTheEnd) {
    Spectrum spectrum;
    std::vector<float> bands(64, 1.0F);
    spectrum.analyse(std::vector<float>(Spectrum::kWindow), 44100, bands);
    EXPECT_EQ(*std::max_element(bands.begin(), bands.end()), 0.0F);
    spectrum.analyse(sine(3900, 1, 8000), 8000, bands);
    EXPECT_NEAR(bands.back(), 1.0F, 0.05F);
}

}  // namespace
