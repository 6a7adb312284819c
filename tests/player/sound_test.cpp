// SPDX-License-Identifier: GPL-3.0-or-later
// What comes out of the player, held against the decoded files sample by sample.
#include "tests/support/Sound.h"

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "audio/read/Decoder.h"
#include "platform/Paths.h"
#include "player/engine/RateShare.h"
#include "tests/player/CaptureBench.h"
#include "tests/support/Fixtures.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace support;
using ::testing::ElementsAre;

constexpr std::size_t kRamp = 128;  // frames of gain ramp at a pause and at a seek

double peak(const std::vector<float>& sound) {
    double highest = 0;
    for (const float sample : sound) highest = std::max(highest, std::abs(double(sample)));
    return highest;
}

std::vector<float> joined(const std::vector<std::vector<float>>& parts) {
    std::vector<float> all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

class WholeFile : public ::testing::TestWithParam<const char*> {};

TEST_P(WholeFile, ComesThroughSampleBySample) {
    const QString name = QString::fromLatin1(GetParam());
    const auto expected = decoded(name);
    ASSERT_GT(expected.size(), 2 * 44000U);
    CaptureBench bench(QStringList{name});
    bench.engine().PlaylistPlayItem(0, 0);
    // Block sizes that match no codec's.
    const auto first = bench.pull(333);
    auto rest = bench.pullUntil(u"ended 0 0"_s);
    const auto all = joined({first, rest});
    ASSERT_GE(all.size(), expected.size());
    EXPECT_EQ(maxDifference(cut(all, 0, expected.size() / 2), expected), 0.0);
    EXPECT_EQ(peak(cut(all, expected.size() / 2, all.size())), 0.0);
    EXPECT_THAT(bench.events, ElementsAre(u"started 0"_s, u"now 0 0"_s, u"ended 0 0"_s));
    EXPECT_EQ(bench.engine().GetPosition(0), -1);
    EXPECT_EQ(bench.engine().GetPlayerStatus(0), player::StatusStopped);
}

INSTANTIATE_TEST_SUITE_P(Formats, WholeFile,
                         ::testing::Values("tone.wav", "tone-u8.wav", "tone-s24.wav",
                                           "tone-s32.wav", "tone-f32.wav", "tone-rf64.wav",
                                           "tone-mono.wav", "tone.mp3", "tone-vbr.mp3",
                                           "tone-mono.mp3", "tone.mp2", "tone.ogg", "tone.wma",
                                           "tone.flac", "tone.m4a"));

TEST(Gapless, NotAFrameIsLostOrAddedAtAJoin) {
    const QStringList names{u"tone.wav"_s, u"tone.mp3"_s, u"tone-mono.wav"_s, u"tone.ogg"_s,
                            u"tone.wma"_s, u"tone.mp2"_s, u"tone.wav"_s};
    std::vector<std::vector<float>> parts;
    for (const QString& name : names) parts.push_back(decoded(name));
    const auto expected = joined(parts);
    CaptureBench bench(names);
    bench.engine().PlaylistPlayItem(0, 0);
    const auto all = bench.pullUntil(u"ended 0 6"_s);
    ASSERT_GE(all.size(), expected.size());
    EXPECT_EQ(maxDifference(cut(all, 0, expected.size() / 2), expected), 0.0);
    EXPECT_THAT(bench.events,
                ElementsAre(u"started 0"_s, u"now 0 0"_s, u"now 0 1"_s, u"now 0 2"_s, u"now 0 3"_s,
                            u"now 0 4"_s, u"now 0 5"_s, u"now 0 6"_s, u"ended 0 6"_s));
}

TEST(Gapless, AnotherRateIsBroughtToTheFirstOnesWithoutAGap) {
    CaptureBench bench(
        QStringList{u"tone.wav"_s, u"tone-48k.wav"_s, u"tone-48k.wav"_s, u"tone.wav"_s});
    bench.engine().PlaylistPlayItem(0, 0);
    const auto all = bench.pullUntil(u"ended 0 3"_s);
    const auto native = decoded(u"tone.wav"_s);
    const std::size_t second = 2 * 88200;  // frames of the two resampled ones together
    EXPECT_EQ(maxDifference(cut(all, 0, 88200), native), 0.0);
    EXPECT_EQ(maxDifference(cut(all, 88200 + second, 88200), native), 0.0);
    EXPECT_EQ(peak(cut(all, 2 * 88200 + second, all.size())), 0.0);
    // The resampled ones hold the same tone: the second of them lies exactly where it should.
    const auto once = cut(all, 88200 + 1000, 80000);
    const auto again = cut(all, 88200 + 88200 + 1000, 80000);
    EXPECT_GT(snrDb(once, again), 60.0);
}

/// Plays sounds that are begun with one after the other, and takes a little of each at its rate.
void playEach(const std::vector<std::pair<QString, int>>& sounds) {
    CaptureBench bench;
    for (const auto& [name, rate] : sounds) {
        bench.engine().LoadSound(0, fixturePath(name));
        bench.engine().PlaySound(0);
        const auto block = bench.pull(20000, rate);
        const audio::read::Decoder decoder(fixture(name.toStdString()));
        if (decoder.format().sampleRate == rate) {
            EXPECT_EQ(maxDifference(block, cut(decoded(name), 0, 20000)), 0.0);
        }
        EXPECT_GT(peak(block), 0.05) << name.toStdString();
        bench.engine().StopPlayer(0);
        bench.pull(1000, rate);
    }
}

TEST(DeviceRate, IsOfTheFirstSoundsFamilyAndNothingLowersIt) {
    playEach({{u"tone-22k.mp3"_s, 44100},
              {u"tone.wav"_s, 44100},
              {u"tone-48k.wav"_s, 48000},
              {u"tone.wav"_s, 48000},
              {u"tone-22k.mp3"_s, 48000}});
    playEach({{u"tone-48k.wav"_s, 48000}, {u"tone-22k.mp3"_s, 48000}});
}

TEST(DeviceRate, FollowsASoundThatIsHigher) {
    for (const auto& [source, device] : std::vector<std::pair<int, int>>{{8000, 48000},
                                                                         {11025, 44100},
                                                                         {16000, 48000},
                                                                         {22050, 44100},
                                                                         {32000, 48000},
                                                                         {37800, 48000},
                                                                         {44100, 44100},
                                                                         {48000, 48000},
                                                                         {50000, 88200},
                                                                         {88200, 88200},
                                                                         {96000, 96000},
                                                                         {176400, 176400},
                                                                         {192000, 192000},
                                                                         {352800, 176400},
                                                                         {384000, 192000}})
        EXPECT_EQ(player::deviceRateFor(source), device) << source;
}

TEST(Gapless, AHigherRateAtAJoinRaisesTheDevicesAndLosesNoFrame) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone-96k.wav"_s, u"tone.wav"_s});
    bench.engine().PlaylistPlayItem(0, 0);
    EXPECT_EQ(maxDifference(bench.pull(88200), decoded(u"tone.wav"_s)), 0.0);
    EXPECT_EQ(maxDifference(bench.pull(192000, 96000), decoded(u"tone-96k.wav"_s)), 0.0);
    const auto third = bench.pullUntil(u"ended 0 2"_s, 96000);
    EXPECT_GT(peak(cut(third, 0, 192000)), 0.1);
    EXPECT_EQ(peak(cut(third, 192000, third.size())), 0.0);
}

TEST(Gapless, ASeekBackWhileTheRateIsAboutToRise) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone-96k.wav"_s});
    bench.engine().PlaylistPlayItem(0, 0);
    bench.pull(86000);
    bench.engine().SeekMs(0, 500);
    const auto block = bench.pull(4096);
    EXPECT_EQ(maxDifference(cut(block, 2 * kRamp, 3000),
                            cut(decoded(u"tone.wav"_s), 22050 + kRamp, 3000)),
              0.0);
    bench.pull(88200 - 22050 - (4096 - kRamp));
    EXPECT_GT(peak(bench.pull(20000, 96000)), 0.1);
}

TEST(Pause, HoldsTheExactFrameAndClicksNot) {
    CaptureBench bench(QStringList{u"tone.wav"_s});
    const auto expected = decoded(u"tone.wav"_s);
    bench.engine().PlaylistPlayItem(0, 0);
    EXPECT_EQ(maxDifference(bench.pull(10000), cut(expected, 0, 10000)), 0.0);
    bench.engine().PausePlayer(0);
    EXPECT_EQ(bench.engine().GetPlayerStatus(0), player::StatusPaused);
    const auto leaving = bench.pull(5000);
    EXPECT_EQ(peak(cut(leaving, kRamp, 5000)), 0.0);
    for (std::size_t i = 0; i < 2 * kRamp; ++i)
        EXPECT_LE(std::abs(leaving[i]), std::abs(expected[20000 + i]) + 1e-6F) << i;
    const auto position = bench.engine().GetPosition(0);
    EXPECT_EQ(position, (10000 + kRamp) * 1000 / 44100);
    EXPECT_EQ(peak(bench.pull(44100)), 0.0);
    EXPECT_EQ(bench.engine().GetPosition(0), position);

    bench.engine().ResumePlayer(0);
    const auto coming = bench.pull(10000);
    const auto following = cut(expected, 10000 + kRamp, 10000);
    EXPECT_EQ(maxDifference(cut(coming, kRamp, 9000), cut(following, kRamp, 9000)), 0.0);
    for (std::size_t i = 0; i < 2 * kRamp; ++i)
        EXPECT_LE(std::abs(coming[i]), std::abs(following[i]) + 1e-6F) << i;
    EXPECT_TRUE(waitUntil([&] { return bench.events.count(u"started 0"_s) == 2; }));
}

class SeekIn : public ::testing::TestWithParam<const char*> {};

TEST_P(SeekIn, IsExactAndInTheNextBlock) {
    const QString name = QString::fromLatin1(GetParam());
    const auto expected = decoded(name);
    CaptureBench bench(QStringList{name});
    bench.engine().PlaylistPlayItem(0, 0);
    bench.pull(10000);
    for (const int target : {1000, 300, 1500, 1501, 0, 1900}) {
        bench.engine().Seek(0, target);
        EXPECT_EQ(bench.engine().GetPosition(0), target);
        const auto block = bench.pull(2048);
        const auto frame = std::size_t(std::lround(target * 44.1));
        // The old place leaves in a ramp, the new one comes in one.
        const auto got = cut(block, 2 * kRamp, 1024);
        EXPECT_LT(maxDifference(got, cut(expected, frame + kRamp, 1024)), 1e-4) << target;
        EXPECT_NEAR(bench.engine().GetPosition(0), target + (2048 - kRamp) / 44.1, 1.0) << target;
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, SeekIn,
                         ::testing::Values("tone.wav", "tone.mp3", "tone-vbr.mp3", "tone.mp2",
                                           "tone.ogg", "tone.wma", "tone.flac"));

TEST(Seek, PercentIsOfTheWholeAndStepsAreTenSeconds) {
    CaptureBench bench(QStringList{u"music.wav"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(2048);
    engine.SetPositionUnit(player::UnitPercent);
    engine.Seek(0, 50);
    EXPECT_EQ(engine.GetPosition(0), 50);
    const auto block = bench.pull(4096);
    EXPECT_EQ(maxDifference(cut(block, 2 * kRamp, 3000),
                            cut(decoded(u"music.wav"_s), 441000 + kRamp, 3000)),
              0.0);
    EXPECT_EQ(engine.GetPosition(0), 50);
    engine.SetPositionUnit(player::UnitMilliseconds);
    const auto middle = engine.GetPosition(0);
    engine.Rewind(0);
    EXPECT_EQ(engine.GetPosition(0), middle - 10000);
    engine.Rewind(0);
    EXPECT_EQ(engine.GetPosition(0), 0);
    engine.Seek(0, 5000);
    engine.Forward(0);
    EXPECT_EQ(engine.GetPosition(0), 15000);
    EXPECT_EQ(engine.GetFormattedPosition(0, 1, 1), u"0:15 / 0:20"_s);
    engine.Forward(0);  // past the end: the list has run out
    bench.pullUntil(u"ended 0 0"_s);
    EXPECT_EQ(engine.GetFormattedPosition(0, 1, 1), QString());
}

TEST(Seek, BackIntoTheEntryThatIsHeardWhileTheNextIsDecoded) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s});
    const auto expected = decoded(u"tone.wav"_s);
    bench.engine().PlaylistPlayItem(0, 0);
    bench.pull(80000);  // the ring holds the second entry by now
    bench.engine().Seek(0, 500);
    const auto block = bench.pull(4096);
    EXPECT_EQ(maxDifference(cut(block, 2 * kRamp, 3000), cut(expected, 22050 + kRamp, 3000)), 0.0);
    EXPECT_TRUE(waitUntil([&] { return bench.events.contains(u"now 0 0"_s); }));
    EXPECT_FALSE(bench.events.contains(u"now 0 1"_s));
    const auto rest = bench.pullUntil(u"now 0 1"_s);
    const auto tail = cut(expected, 22050 + 4096 - kRamp, 88200);
    EXPECT_EQ(maxDifference(cut(rest, 0, tail.size() / 2), tail), 0.0);
}

TEST(Seek, WhilePausedKeepsSilenceAndGoesOnAtTheTarget) {
    CaptureBench bench(QStringList{u"tone.wav"_s});
    const auto expected = decoded(u"tone.wav"_s);
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(3000);
    engine.PausePlayer(0);
    bench.pull(3000);
    engine.Seek(0, 1000);
    EXPECT_EQ(engine.GetPosition(0), 1000);
    EXPECT_EQ(peak(bench.pull(3000)), 0.0);
    EXPECT_EQ(engine.GetPosition(0), 1000);
    engine.ResumePlayer(0);
    EXPECT_EQ(maxDifference(cut(bench.pull(3000), kRamp, 2000), cut(expected, 44100 + kRamp, 2000)),
              0.0);
}

TEST(Stop, ReturnsToTheStartOfTheEntry) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 1);
    bench.pull(30000);
    engine.StopPlayer(0);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusStopped);
    EXPECT_EQ(engine.GetPosition(0), 0);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 1);
    EXPECT_EQ(peak(cut(bench.pull(5000), kRamp, 5000)), 0.0);
    engine.PlaySound(0);
    EXPECT_EQ(maxDifference(bench.pull(5000), cut(decoded(u"tone.mp3"_s), 0, 5000)), 0.0);
    engine.StopPlayer(0);
    engine.PausePlayer(0);
    engine.ResumePlayer(0);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusStopped);
}

TEST(Volume, FollowsItsCurveWithoutSteps) {
    CaptureBench bench(QStringList{u"music.wav"_s});
    auto& engine = bench.engine();
    const auto expected = decoded(u"music.wav"_s);
    engine.PlaylistPlayItem(0, 0);
    bench.pull(2000);
    engine.SetVolume(0, 50);
    const auto turned = bench.pull(10000);
    const double gain = std::pow(50.0 / 99, 3);
    double largest = 0;
    for (std::size_t i = 4000; i < 20000; ++i)
        largest = std::max(largest, std::abs(turned[i] - gain * double(expected[4000 + i])));
    EXPECT_LT(largest, 1e-6);
    // On the way down the gain of neighbouring samples differs by next to nothing.
    for (std::size_t i = 2; i < 4000; ++i) {
        const double now = expected[4000 + i];
        const double before = expected[4000 + i - 2];
        EXPECT_LT(std::abs(double(turned[i]) - turned[i - 2]), std::abs(now - before) + 0.002) << i;
    }
    engine.SetVolume(0, 0);
    bench.pull(2000);
    EXPECT_EQ(peak(bench.pull(2000)), 0.0);
    engine.SetVolume(0, 99);
    bench.pull(2000);
    EXPECT_EQ(maxDifference(bench.pull(2000), cut(expected, 18000, 2000)), 0.0);
    engine.SetVolume(0, 500);
    EXPECT_EQ(maxDifference(bench.pull(2000), cut(expected, 20000, 2000)), 0.0);
}

TEST(StartUpSound, PlaysBeforeInitAndIsNoEntry) {
    CaptureBench bench;
    auto& engine = bench.engine();
    EXPECT_EQ(engine.GetPosition(0), -1);
    engine.LoadSound(0, fixturePath(u"tone.wav"_s));
    engine.PlaySound(0);
    engine.InitEngine(2, 0, 0, 0, 0, 0);
    engine.SetPlayerFlag(0, true);
    EXPECT_EQ(engine.PlaylistGetCount(0), 0);
    const auto expected = decoded(u"tone.wav"_s);
    std::vector<float> all;
    ASSERT_TRUE(waitUntil([&] {
        const auto block = bench.pull(1000);
        all.insert(all.end(), block.begin(), block.end());
        return engine.GetPosition(0) < 0;
    }));
    EXPECT_EQ(maxDifference(cut(all, 0, expected.size() / 2), expected), 0.0);
    EXPECT_THAT(bench.events, ElementsAre(u"started 0"_s));
}

TEST(StartUpSound, AMissingFileIsNoTrouble) {
    CaptureBench bench;
    bench.engine().LoadSound(0, u"/none/wt.mp3"_s);
    bench.engine().PlaySound(0);
    EXPECT_TRUE(waitUntil([&] { return bench.engine().GetPosition(0) < 0; }));
    EXPECT_EQ(bench.engine().GetPlayerStatus(0), player::StatusStopped);
    EXPECT_TRUE(bench.events.isEmpty());
}

TEST(Overlay, OneFadesOutWhileTheOtherFadesIn) {
    CaptureBench bench(QStringList{u"music.wav"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    engine.Seek(0, 1000);
    engine.FadePlayer(0, 99, 0, 1000);
    engine.LoadSound(1, fixturePath(u"tone.wav"_s));
    engine.FadePlayer(1, 0, 99, 1000);
    EXPECT_EQ(engine.GetPlayerStatus(1), player::StatusPlaying);
    const auto block = bench.pull(44100);
    const auto music = decoded(u"music.wav"_s);
    const auto tone = decoded(u"tone.wav"_s);
    double largest = 0;
    for (std::size_t i = 0; i < 44100; ++i) {
        const double out = std::pow(1 - double(i) / 44100, 3);
        const double in = std::pow(double(i) / 44100, 3);
        const double ramp = std::min(1.0, double(i + 1) / kRamp);  // a seek comes in with one
        const double sum = music[88200 + 2 * i] * out * ramp + tone[2 * i] * in;
        if (i >= kRamp) largest = std::max(largest, std::abs(block[2 * i] - sum));
    }
    EXPECT_LT(largest, 1e-4);
    // The silent one has stopped, the other one goes on, and Stop ends it.
    bench.pull(2048);
    EXPECT_TRUE(waitUntil([&] { return engine.GetPlayerStatus(0) == player::StatusStopped; }));
    EXPECT_EQ(engine.GetPlayerStatus(1), player::StatusPlaying);
    EXPECT_GT(peak(bench.pull(2048)), 0.05);
    engine.StopPlayer(0);
    EXPECT_EQ(engine.GetPlayerStatus(1), player::StatusStopped);
    EXPECT_EQ(peak(cut(bench.pull(2048), kRamp, 1000)), 0.0);
}

/// An overlay under way: both players sound.
struct OverlayOn {
    CaptureBench bench{QStringList{u"music.wav"_s, u"music.mp3"_s}};
    player::PlayerEngine& engine = bench.engine();
    explicit OverlayOn(int fadeMs) {
        engine.PlaylistPlayItem(0, 0);
        engine.SeekMs(0, 1000);
        engine.FadePlayer(0, 99, 0, fadeMs);
        engine.LoadSound(1, fixturePath(u"tone.wav"_s));
        engine.FadePlayer(1, 0, 99, 1000);
        bench.pull(4096);
        EXPECT_EQ(engine.GetPlayerStatus(1), player::StatusPlaying);
    }
};

TEST(Overlay, PlayNextAndPreviousEndIt) {
    for (const int command : {0, 1}) {
        OverlayOn overlay(10000);
        if (command == 0) overlay.engine.PlaylistPlayItem(0, 1);
        if (command == 1) overlay.engine.PlaylistNext(0);
        overlay.bench.pullUntil(u"now 0 1"_s);
        EXPECT_EQ(overlay.engine.GetPlayerStatus(1), player::StatusStopped) << command;
        EXPECT_EQ(overlay.engine.GetPlayerStatus(0), player::StatusPlaying) << command;
    }
}

TEST(Overlay, NextAfterTheFadePlaysTheNeighbourAlone) {
    OverlayOn overlay(100);
    ASSERT_TRUE(waitUntil([&] {
        overlay.bench.pull(2048);
        return overlay.engine.GetPlayerStatus(0) == player::StatusStopped;
    }));
    EXPECT_EQ(overlay.engine.GetPlayerStatus(1), player::StatusPlaying);
    overlay.engine.PlaylistNext(0);
    overlay.bench.pullUntil(u"now 0 1"_s);
    EXPECT_EQ(overlay.engine.GetPlayerStatus(1), player::StatusStopped);
    EXPECT_EQ(overlay.engine.GetPlayerStatus(0), player::StatusPlaying);
}

TEST(Displays, PeaksAndSpectrumOfWhatIsHeard) {
    CaptureBench bench(QStringList{u"music.wav"_s});
    auto& engine = bench.engine();
    std::vector<float> bands(32, 1.0F);
    EXPECT_EQ(engine.Peaks(0), nullptr);
    EXPECT_FALSE(engine.Spectrum(0, bands));
    EXPECT_EQ(*std::max_element(bands.begin(), bands.end()), 0.0F);
    engine.PlaylistPlayItem(0, 0);
    bench.pull(30000);
    EXPECT_TRUE(engine.Spectrum(0, bands));
    EXPECT_GT(*std::max_element(bands.begin(), bands.end()), 0.5F);
    ASSERT_TRUE(waitUntil([&] { return engine.Peaks(0) && engine.Peaks(0)->measured == 1.0; }));
    const auto peaks = engine.Peaks(0);
    EXPECT_EQ(peaks->columns.size(), 2048U);
    double highest = 0;
    for (const auto& column : peaks->columns)
        highest = std::max<double>(highest, std::max(column.high, -column.low));
    EXPECT_FLOAT_EQ(float(highest), float(peak(decoded(u"music.wav"_s))));
}

}  // namespace
