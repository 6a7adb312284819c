// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Silence.h"

#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

using namespace audio::dsp;

namespace {

constexpr int rate = 44100;

// A tone of 1 kHz between two stretches of silence, each in milliseconds.
std::vector<float> tone(int before, int sound, int after, float level) {
    const auto frames = [](int ms) { return static_cast<std::size_t>(ms) * rate / 1000; };
    std::vector<float> samples(frames(before));
    for (std::size_t i = 0; i < frames(sound); ++i)
        samples.push_back(level *
                          static_cast<float>(std::sin(2 * std::numbers::pi * 1000 * i / rate)));
    samples.resize(samples.size() + frames(after));
    return samples;
}

FrameRange rangeOf(const std::vector<float>& mono) {
    LoudnessMeter meter(rate, 1, 100);
    for (std::size_t start = 0; start < mono.size(); start += 1000)
        meter.add(std::span(mono).subspan(start, std::min<std::size_t>(1000, mono.size() - start)));
    meter.finish();
    EXPECT_EQ(meter.frames(), static_cast<std::int64_t>(mono.size()));
    return audibleRange(meter, -20);
}

}  // namespace

TEST(Silence, BothEndsGoWithinTwoSteps) {
    for (const float level : {0.5F, 0.001F}) {
        const FrameRange range = rangeOf(tone(1000, 3000, 2000, level));
        EXPECT_LE(range.start, rate);
        EXPECT_GE(range.start, rate - 2 * rate / 100);
        EXPECT_GE(range.end, 4 * rate);
        EXPECT_LE(range.end, 4 * rate + 3 * rate / 100);
    }
}

TEST(Silence, SoundWithoutSilenceStaysWhole) {
    EXPECT_EQ(rangeOf(tone(0, 3000, 0, 0.5F)), (FrameRange{0, 3 * rate}));
}

TEST(Silence, SilenceThroughoutStaysWhole) {
    EXPECT_EQ(rangeOf(tone(1000, 0, 1000, 0)), (FrameRange{0, 2 * rate}));
    EXPECT_EQ(rangeOf({}), (FrameRange{0, 0}));
}

TEST(Silence, SoundTooShortToMeasureStaysWhole) {
    EXPECT_EQ(rangeOf(tone(100, 100, 100, 0.5F)), (FrameRange{0, 3 * rate / 10}));
}

TEST(Silence, QuietPauseInTheMiddleStays) {
    std::vector<float> twice = tone(500, 1000, 2000, 0.5F);
    const std::vector<float> again = tone(0, 1000, 500, 0.5F);
    twice.insert(twice.end(), again.begin(), again.end());
    const FrameRange range = rangeOf(twice);
    EXPECT_NEAR(range.start, rate / 2, 2 * rate / 100);
    EXPECT_NEAR(range.end, static_cast<double>(twice.size()) - rate / 2.0, 3 * rate / 100);
}

TEST(Silence, ShortSoundInLongSilenceSurvives) {
    const FrameRange range = rangeOf(tone(5000, 30, 5000, 0.5F));
    EXPECT_LE(range.start, 5 * rate);
    EXPECT_GE(range.end, 5 * rate + 30 * rate / 1000);
}

TEST(Loudness, TheReferenceToneHasTheReferenceLoudness) {
    // A 1 kHz tone of -23 dBFS in both channels measures -23 LUFS (EBU Tech 3341).
    const std::vector<float> mono = tone(0, 5000, 0, static_cast<float>(std::pow(10, -23 / 20.0)));
    std::vector<float> stereo;
    for (const float sample : mono) stereo.insert(stereo.end(), {sample, sample});
    LoudnessMeter meter(rate, 2, 100);
    meter.add(stereo);
    meter.finish();
    EXPECT_NEAR(meter.gatedLoudness(), -23.0, 0.1);
}
