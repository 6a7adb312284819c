// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Resampler.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "tests/support/Sound.h"

namespace {

using audio::ffmpeg::Resampler;

std::vector<float> sine(int rate, std::size_t frames, std::size_t channels, double hertz = 997) {
    std::vector<float> samples(frames * channels);
    for (std::size_t i = 0; i < frames; ++i)
        for (std::size_t c = 0; c < channels; ++c)
            samples[i * channels + c] =
                float(0.5 * std::sin(2 * std::numbers::pi * hertz * double(i) / rate));
    return samples;
}

std::vector<float> convert(Resampler& resampler, const std::vector<float>& in,
                           std::size_t channels) {
    std::vector<float> out;
    const std::size_t frames = in.size() / channels;
    for (std::size_t at = 0, size = 1; at < frames; size = size * 7 % 5'003 + 1) {
        const std::size_t count = std::min(size, frames - at);
        resampler.push(in.data() + at * channels, count, out);
        at += count;
    }
    resampler.finish(out);
    return out;
}

TEST(Resampler, EveryRateKeepsPlaceAndLength) {
    for (const int from : {8'000, 22'050, 32'000, 44'100, 48'000, 96'000})
        for (const int to : {22'050, 44'100, 48'000}) {
            Resampler resampler(from, 2, to, 2);
            const std::size_t frames = std::size_t(from) + 3;
            for (int again = 0; again < 2; ++again) {
                const std::vector<float> out = convert(resampler, sine(from, frames, 2), 2);
                ASSERT_EQ(out.size() / 2,
                          (frames * std::size_t(to) + std::size_t(from) - 1) / std::size_t(from));
                const std::vector<float> ideal = sine(to, out.size() / 2, 2);
                // Before the start and behind the end there is silence, which rings a little.
                const auto edge = 2 * std::ptrdiff_t(to / 20);
                EXPECT_GT(support::snrDb({ideal.begin() + edge, ideal.end() - edge},
                                         {out.begin() + edge, out.end() - edge}),
                          80)
                    << from << " to " << to;
            }
        }
}

TEST(Resampler, SameRateIsExact) {
    Resampler resampler(44'100, 2, 44'100, 2);
    const std::vector<float> in = sine(44'100, 5'000, 2);
    EXPECT_EQ(support::maxDifference(convert(resampler, in, 2), in), 0);
}

TEST(Resampler, ChannelsKeepFullScale) {
    Resampler up(44'100, 1, 44'100, 2);
    const std::vector<float> mono = {1, -1, 0.5F};
    EXPECT_EQ(convert(up, mono, 1), (std::vector<float>{1, 1, -1, -1, 0.5F, 0.5F}));
    Resampler down(44'100, 2, 44'100, 1);
    const std::vector<float> mixed = convert(down, {1, 1, 1, -1, 0.5F, 0}, 2);
    ASSERT_EQ(mixed.size(), 3U);
    EXPECT_NEAR(mixed[0], 1, 1e-6);
    EXPECT_NEAR(mixed[1], 0, 1e-6);
    EXPECT_NEAR(mixed[2], 0.25, 1e-6);
    Resampler six(44'100, 6, 48'000, 2);
    for (const float sample : convert(six, std::vector<float>(6 * 4'410, 1.0F), 6))
        EXPECT_LT(std::abs(sample), 1.2F);
}

TEST(Resampler, NothingGivesNothing) {
    Resampler resampler(44'100, 2, 48'000, 2);
    EXPECT_TRUE(convert(resampler, {}, 2).empty());
}

}  // namespace
