// SPDX-License-Identifier: GPL-3.0-or-later
// The judges themselves: what the other tests measure with has to be right first.
#include <gtest/gtest.h>

#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"

namespace {

constexpr std::size_t toneFrames = 88'200;

TEST(Judge, FfmpegSeesTheWholeSound) {
    for (const char* name : {"tone.wav", "tone-f32.wav", "tone.mp3", "tone.ogg", "tone.flac"}) {
        const support::Sound sound = support::decodeWithFfmpeg(support::fixture(name));
        EXPECT_EQ(sound.frames(), toneFrames) << name;
        EXPECT_EQ(sound.rate, 44'100) << name;
        EXPECT_EQ(sound.channels, 2) << name;
    }
}

TEST(Judge, Mpg123AgreesWithFfmpeg) {
    const support::Sound one = support::decodeWithFfmpeg(support::fixture("tone.mp3"));
    const support::Sound other = support::decodeWithMpg123(support::fixture("tone.mp3"));
    EXPECT_EQ(other.rate, 44'100);
    EXPECT_LT(support::maxDifference(one.samples, other.samples), 1e-4);
}

TEST(Judge, NoiseIsMeasured) {
    EXPECT_NEAR(support::snrDb({1, -1, 1, -1}, {0.9F, -0.9F, 0.9F, -0.9F}), 20, 0.01);
    EXPECT_GT(support::maxDifference({1}, {1, 1}), 1e30);
    EXPECT_FLOAT_EQ(float(support::maxDifference({1, 0}, {1, 0.5F})), 0.5F);
}

}  // namespace
