// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/Resampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

#include <QFile>
#include <QString>
#include <gtest/gtest.h>

#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

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

/// A sweep over one second from one frequency to another, at half of full scale.
std::vector<float> sweep(int rate, double from, double to) {
    std::vector<float> samples;
    double phase = 0;
    for (int i = 0; i < rate; ++i) {
        const double fade = std::min({1.0, i / (0.05 * rate), (rate - i) / (0.05 * rate)});
        samples.push_back(float(0.5 * fade * fade * std::sin(phase)));
        phase += 2 * std::numbers::pi * (from + (to - from) * i / rate) / rate;
    }
    return samples;
}

/// What sox leaves of a sound above or below a frequency, by a filter of 140 dB, in dB of full
/// scale.
double levelOf(const std::vector<float>& sound, int rate, const QString& band) {
    const support::TempFolder folder;
    const QString path = folder.file(QStringLiteral("sound.f32"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(sound.data()), qint64(sound.size() * sizeof(float)));
    file.close();
    const auto filtered = support::run(
        QStringLiteral("sox"),
        {QStringLiteral("-t"), QStringLiteral("f32"), QStringLiteral("-r"), QString::number(rate),
         QStringLiteral("-c"), QStringLiteral("1"), path, QStringLiteral("-t"),
         QStringLiteral("f32"), QStringLiteral("-"), QStringLiteral("sinc"), QStringLiteral("-a"),
         QStringLiteral("140"), QStringLiteral("-t"), QStringLiteral("200"), band});
    EXPECT_EQ(filtered.exitCode, 0) << filtered.err.toStdString();
    double energy = 1e-30;
    const auto count = std::size_t(filtered.out.size()) / sizeof(float);
    for (std::size_t i = 0; i < count; ++i) {
        float sample = 0;
        std::memcpy(&sample, filtered.out.data() + i * sizeof(float), sizeof(float));
        energy += double(sample) * double(sample);
    }
    return 10 * std::log10(energy / double(count));
}

// Up: what lies above the sound's own band is images. Down: what the target cannot hold must be
// gone, and not come back as something else.
TEST(Resampler, ImagesAndAliasesLieBelow100Db) {
    for (const auto& [from, to] : {std::pair(22'050, 44'100), std::pair(44'100, 48'000),
                                   std::pair(44'100, 96'000), std::pair(8'000, 48'000)}) {
        Resampler up(from, 1, to, 1);
        const auto out = convert(up, sweep(from, 0.3 * from, 0.45 * from), 1);
        EXPECT_GT(levelOf(out, to, QStringLiteral("0-%1").arg(from * 0.47)), -14) << from;
        EXPECT_LT(levelOf(out, to, QString::number(from * 0.5)), -100) << from << " to " << to;
    }
    for (const auto& [from, to] :
         {std::pair(48'000, 44'100), std::pair(96'000, 48'000), std::pair(192'000, 44'100)}) {
        Resampler down(from, 1, to, 1);
        const auto out = convert(down, sweep(from, 0.5 * to, 0.499 * from), 1);
        EXPECT_LT(levelOf({out.begin() + to / 20, out.end()}, to, QStringLiteral("0-20000")), -100)
            << from << " to " << to;
    }
}

TEST(Resampler, IsTransparentTo20Kilohertz) {
    for (const auto& [from, to] : {std::pair(44'100, 48'000), std::pair(48'000, 44'100),
                                   std::pair(44'100, 96'000), std::pair(96'000, 44'100)}) {
        for (const double hertz : {20.0, 997.0, 10'000.0, 18'000.0, 20'000.0}) {
            Resampler resampler(from, 1, to, 1);
            const auto out = convert(resampler, sine(from, std::size_t(from), 1, hertz), 1);
            const auto ideal = sine(to, out.size(), 1, hertz);
            const auto edge = std::ptrdiff_t(to / 5);
            EXPECT_GT(support::snrDb({ideal.begin() + edge, ideal.end() - edge},
                                     {out.begin() + edge, out.end() - edge}),
                      60)
                << hertz << " Hz from " << from << " to " << to;
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
