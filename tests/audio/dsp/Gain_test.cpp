// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Gain.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

using namespace audio::dsp;

TEST(Gain, RampBeginsWithTheFirstAndEndsWithTheLastFactor) {
    std::vector<float> stereo(10, 1.0F);
    applyRamp(stereo, 2, {0.0, 1.0, 5}, 0);
    EXPECT_EQ(stereo, (std::vector<float>{0, 0, .25F, .25F, .5F, .5F, .75F, .75F, 1, 1}));
}

TEST(Gain, RampInPiecesIsTheRampAtOnce) {
    const GainRamp ramp{1.0, 0.1, 1000};
    std::vector<float> whole(1000, 0.7F);
    std::vector<float> pieces = whole;
    applyRamp(whole, 1, ramp, 0);
    for (std::size_t start = 0; start < 1000; start += 100)
        applyRamp(std::span(pieces).subspan(start, 100), 1, ramp, static_cast<long>(start));
    EXPECT_EQ(whole, pieces);
    EXPECT_EQ(whole.front(), 0.7F);
    EXPECT_FLOAT_EQ(whole.back(), 0.07F);
}

TEST(Gain, RampOfOneFrameHasTheFirstFactor) {
    std::vector<float> one(1, 1.0F);
    applyRamp(one, 1, {0.25, 1.0, 1}, 0);
    EXPECT_EQ(one[0], 0.25F);
}

TEST(Gain, PeakIsTheHighestAbsoluteSample) {
    EXPECT_EQ(peak({}), 0.0F);
    EXPECT_EQ(peak(std::vector<float>{0.2F, -0.9F, 0.5F}), 0.9F);
}

TEST(Gain, MixWeighsBoth) {
    std::vector<float> sound{1, 1, 1};
    mixInto(sound, std::vector<float>{0.5F, -0.5F}, 0.5, 2.0);
    EXPECT_EQ(sound, (std::vector<float>{1.5F, -0.5F, 1}));
}

TEST(Gain, ThePeakIsFoundWhereverItLies) {
    for (std::size_t size = 1; size < 50; ++size) {
        for (std::size_t place = 0; place < size; ++place) {
            std::vector<float> samples(size, 0.25F);
            samples[place] = place % 2 == 0 ? -0.75F : 0.75F;
            EXPECT_EQ(peak(samples), 0.75F) << place << " of " << size;
            std::vector<float> peaks(3);
            raisePeaks(samples, peaks);
            EXPECT_EQ(peaks[place % 3], 0.75F) << place << " of " << size;
            EXPECT_EQ(std::count(peaks.begin(), peaks.end(), 0.75F), 1);
        }
    }
    EXPECT_EQ(peak({}), 0.0F);
}
