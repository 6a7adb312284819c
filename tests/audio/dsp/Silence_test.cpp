// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Silence.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "audio/dsp/Loudness.h"

using audio::FrameRange;
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

constexpr LoudnessShape oneChannel{rate, 1};

// In pieces, as it is read from files; what a stretch needs ahead of it is repeated.
double gatedLoudness(const std::vector<float>& mono, std::size_t stretches) {
    const auto step = static_cast<std::size_t>(GatingMeter::stepFrames(rate));
    const auto lead = static_cast<std::size_t>(GatingMeter::leadFrames(rate));
    const std::size_t length = (mono.size() / stretches / step + 1) * step;
    std::vector<GatingMeter> meters;
    for (std::size_t start = 0; start < std::max<std::size_t>(1, mono.size()); start += length) {
        const std::size_t from = start - std::min(start, lead);
        const std::size_t end = std::min(mono.size(), start + length);
        meters.emplace_back(oneChannel);
        for (std::size_t at = from; at < end; at += 1000)
            meters.back().add(std::span(mono).subspan(at, std::min<std::size_t>(1000, end - at)));
    }
    return GatingMeter::gatedLoudness(meters);
}

FrameRange rangeOf(const std::vector<float>& mono) {
    const WindowGrid grid(rate, 100, static_cast<std::int64_t>(mono.size()));
    return audibleRange(grid, gatedLoudness(mono, 1), -20, [&](std::size_t first, std::size_t n) {
        WindowMeter meter(oneChannel, grid, first);
        const auto start = static_cast<std::size_t>(meter.start());
        const auto end = static_cast<std::size_t>(grid.end(first + n - 1));
        meter.add(std::span(mono).subspan(start, end - start));
        return meter.windows();
    });
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
    std::vector<GatingMeter> meters;
    meters.emplace_back(LoudnessShape{rate, 2});
    meters.front().add(stereo);
    EXPECT_NEAR(GatingMeter::gatedLoudness(meters), -23.0, 0.1);
}

TEST(Loudness, StretchesMeasureAsTheWholeDoes) {
    // Loud, quiet and silent parts, so that both gates are at work.
    std::vector<float> sound = tone(700, 9000, 0, 0.5F);
    for (const float level : {0.05F, 0.3F, 0.001F}) {
        const std::vector<float> more = tone(300, 7000, 500, level);
        sound.insert(sound.end(), more.begin(), more.end());
    }
    const double whole = gatedLoudness(sound, 1);
    for (const std::size_t stretches : {2, 3, 7, 16})
        EXPECT_NEAR(gatedLoudness(sound, stretches), whole, 0.005) << stretches << " stretches";
}

TEST(Loudness, AWindowMeasuresTheSameWhereverMeasuringBegan) {
    const std::vector<float> sound = tone(1000, 3000, 700, 0.4F);
    const WindowGrid grid(rate, 100, static_cast<std::int64_t>(sound.size()));
    WindowMeter all(oneChannel, grid, 0);
    all.add(sound);
    ASSERT_EQ(all.windows().size(), grid.count());
    for (const std::size_t first : {std::size_t{1}, std::size_t{150}, grid.count() - 3}) {
        WindowMeter some(oneChannel, grid, first);
        some.add(std::span(sound).subspan(static_cast<std::size_t>(some.start())));
        ASSERT_EQ(some.windows().size(), grid.count() - first);
        const auto audible = [](float window) { return std::max(window, -100.0F); };
        for (std::size_t i = 0; i < some.windows().size(); ++i)
            EXPECT_NEAR(audible(some.windows()[i]), audible(all.windows()[first + i]), 0.001);
    }
}

TEST(Loudness, TheGridEndsWithTheSound) {
    EXPECT_EQ(WindowGrid(rate, 100, 4409).count(), 0U);
    EXPECT_EQ(WindowGrid(rate, 100, 4410).count(), 1U);
    EXPECT_EQ(WindowGrid(rate, 100, 4411).count(), 2U);
    EXPECT_EQ(WindowGrid(rate, 100, 4411).end(1), 4411);
    EXPECT_EQ(WindowGrid(rate, 100, 4410 + 441).count(), 2U);
    // A window that is no multiple of its step: the first ends with the step that completes it.
    EXPECT_EQ(WindowGrid(11025, 100, 1102).count(), 1U);
    EXPECT_EQ(WindowGrid(11025, 100, 1102).end(0), 1102);
    EXPECT_EQ(WindowGrid(11025, 100, 1210).end(0), 1210);
}
