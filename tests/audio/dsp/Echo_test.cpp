// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Echo.h"

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Error.h"

using namespace audio::dsp;

namespace {

// The formula as it stands in the header, one repeat after the other, in double precision.
std::vector<double> byTheFormula(const std::vector<float>& x, const EchoSettings& s, int rate) {
    const double a = 1.0 - std::exp(-2.0 * std::numbers::pi * s.cutoff / rate);
    std::vector<double> out(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = s.dry * static_cast<double>(x[i]);
    for (int k = 1; k <= s.repeats; ++k) {
        std::vector<double> repeat(x.size());
        const std::size_t delay = static_cast<std::size_t>(k * s.delay);
        for (std::size_t i = delay; i < x.size(); ++i)
            repeat[i] = static_cast<double>(x[i - delay]);
        for (int pass = 0; pass < k; ++pass) {
            double last = 0;
            for (double& value : repeat) value = last += a * (value - last);
        }
        for (std::size_t i = 0; i < x.size(); ++i)
            out[i] += s.depth * std::pow(s.decay, k - 1) * repeat[i];
    }
    return out;
}

std::vector<float> noise(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> even(-0.5F, 0.5F);
    std::vector<float> samples(count);
    for (float& sample : samples) sample = even(random);
    return samples;
}

}  // namespace

TEST(Echo, IsTheFormulaInBlocksOfAnySize) {
    const EchoSettings settings{997, 0.9, 0.4, 0.75, 8000, 10};
    const std::vector<float> input = noise(30000);
    const std::vector<double> expected = byTheFormula(input, settings, 44100);
    std::vector<float> output = input;
    Echo echo(settings, 44100, 1);
    std::size_t size = 1;
    for (std::span<float> rest = output; !rest.empty(); size = size * 3 % 5000 + 1) {
        const std::size_t count = std::min(size, rest.size());
        echo.process(rest.first(count));
        rest = rest.subspan(count);
    }
    for (std::size_t i = 0; i < output.size(); ++i) ASSERT_NEAR(output[i], expected[i], 2e-6) << i;
}

TEST(Echo, KeepsTheChannelsApart) {
    const EchoSettings settings{50, 0.9, 0.8, 0.5, 3000, 4};
    const std::vector<float> left = noise(2000);
    std::vector<float> stereo(4000);
    for (std::size_t i = 0; i < left.size(); ++i) stereo[2 * i] = left[i];
    Echo(settings, 8000, 2).process(stereo);
    const std::vector<double> expected = byTheFormula(left, settings, 8000);
    for (std::size_t i = 0; i < left.size(); ++i) {
        ASSERT_NEAR(stereo[2 * i], expected[i], 2e-6);
        ASSERT_EQ(stereo[2 * i + 1], 0.0F);
    }
}

TEST(Echo, RefusesWhatCannotBe) {
    EXPECT_THROW(Echo({0, 1, 1, 1, 8000, 10}, 44100, 2), platform::Error);
    EXPECT_THROW(Echo({10, 1, 1, 1, 0, 10}, 44100, 2), platform::Error);
    EXPECT_THROW(Echo({10, 1, 1, 1, 8000, -1}, 44100, 2), platform::Error);
}

// Two repeats and two channels at a time are filtered side by side; there may be one too many.
TEST(Echo, HoldsForAnyNumberOfRepeatsAndChannels) {
    const std::vector<float> sound = noise(4'000);
    for (const int repeats : {0, 1, 2, 3, 7}) {
        const EchoSettings settings{331, 0.8, 0.5, 0.7, 3000, repeats};
        const std::vector<double> expected = byTheFormula(sound, settings, 44100);
        for (const std::size_t channels : {1U, 2U, 3U, 5U}) {
            std::vector<float> all(sound.size() * channels);
            for (std::size_t i = 0; i < all.size(); ++i)
                all[i] = i % channels == channels - 1 ? -sound[i / channels] : sound[i / channels];
            Echo(settings, 44100, int(channels)).process(all);
            for (std::size_t i = 0; i < all.size(); ++i) {
                const double sign = i % channels == channels - 1 ? -1 : 1;
                ASSERT_NEAR(all[i], sign * expected[i / channels], 2e-6)
                    << repeats << " repeats, " << channels << " channels, sample " << i;
            }
        }
    }
}
