// SPDX-License-Identifier: GPL-3.0-or-later
// What the player does with commands: events, skipping, edits while it plays, files let go of.
#include <atomic>
#include <filesystem>
#include <memory>
#include <thread>

#include <QDir>
#include <QFile>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Error.h"
#include "platform/Paths.h"
#include "tests/player/CaptureBench.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Sound.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace support;
using ::testing::ElementsAre;

/// Plays until `count` events are there.
QStringList eventsAfter(CaptureBench& bench, qsizetype count) {
    EXPECT_TRUE(waitUntil([&] {
        if (bench.events.size() < count) bench.pull(512);
        return bench.events.size() >= count;
    })) << bench.events.join(u", "_s).toStdString();
    return bench.events;
}

QString broken(const TempFolder& folder, const QString& name, const QByteArray& bytes) {
    QFile file(folder.file(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

TEST(Skipping, InTheDirectionOfTravel) {
    const TempFolder folder;
    CaptureBench bench(QStringList{
        u"tone.wav"_s, u"/none/missing.mp3"_s, broken(folder, u"text.mp3"_s, QByteArray(9000, 'x')),
        broken(folder, u"empty.wav"_s, {}), u"http://127.0.0.1:9/stream.mp3"_s, u"tone.mp3"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 1);
    EXPECT_EQ(maxDifference(bench.pull(3000), cut(decoded(u"tone.mp3"_s), 0, 3000)), 0.0);
    EXPECT_THAT(eventsAfter(bench, 2), ElementsAre(u"started 0"_s, u"now 0 5"_s));
    bench.events.clear();
    engine.PlaylistPrevious(0);
    EXPECT_THAT(eventsAfter(bench, 2), ElementsAre(u"started 0"_s, u"now 0 0"_s));
    bench.events.clear();
    engine.PlaylistNext(0);
    EXPECT_THAT(eventsAfter(bench, 2), ElementsAre(u"started 0"_s, u"now 0 5"_s));
    // By itself too, without a gap.
    engine.StopPlayer(0);
    bench.pull(1000);
    bench.events.clear();
    engine.PlaylistPlayItem(0, 0);
    const auto all = bench.pullUntil(u"now 0 5"_s);
    EXPECT_EQ(maxDifference(cut(all, 88200, 500), cut(decoded(u"tone.mp3"_s), 0, 500)), 0.0);
}

TEST(Skipping, WithNothingLeftPlaybackStops) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"/none/a.mp3"_s, u"/none/b.mp3"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 1);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPlaying);
    ASSERT_TRUE(waitUntil([&] { return !bench.events.isEmpty(); }));
    EXPECT_THAT(bench.events, ElementsAre(u"ended 0 1"_s));
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusStopped);
    EXPECT_EQ(engine.GetPosition(0), -1);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), -1);
}

TEST(Skipping, TwentyThousandMissingFilesHoldNobodyUp) {
    CaptureBench bench;
    QStringList missing;
    for (int i = 0; i < 20000; ++i) missing.append(u"/none/%1.mp3"_s.arg(i));
    bench.list(missing);
    bench.list({u"tone.wav"_s});
    bench.engine().PlaylistPlayItem(0, 0);
    bench.engine().StopPlayer(0);
    bench.engine().PlaylistPlayItem(0, 20000);
    EXPECT_EQ(maxDifference(bench.pull(3000), cut(decoded(u"tone.wav"_s), 0, 3000)), 0.0);
    bench.engine().PlaylistPlayItem(0, 0);
    EXPECT_TRUE(waitUntil([&] { return bench.events.count(u"started 0"_s) == 2; }));
}

/// Missing entries around one that plays.
struct AmongMissing {
    CaptureBench bench{QStringList{u"/none/a.mp3"_s, u"music.wav"_s, u"/none/b.mp3"_s}};
    std::vector<float> expected = decoded(u"music.wav"_s);
    std::size_t heard = 0;

    AmongMissing() {
        bench.engine().PlaylistPlayItem(0, 1);
        eventsAfter(bench, 2);
        bench.events.clear();
        bench.engine().SeekMs(0, 1000);
        bench.pull(4096);
        heard = 44100 + 4096 - 128;  // the ramp of the seek was of the old place
    }
    /// What is pulled next follows what was heard, sample by sample.
    void expectItGoesOn(std::size_t frames) {
        EXPECT_EQ(maxDifference(bench.pull(frames), cut(expected, heard, frames)), 0.0);
        heard += frames;
    }
};

TEST(Skipping, NextAndPreviousAmongMissingEntriesLeaveTheSoundPlaying) {
    AmongMissing deck;
    auto& engine = deck.bench.engine();
    engine.PlaylistNext(0);
    deck.expectItGoesOn(5000);
    engine.PlaylistPrevious(0);
    deck.expectItGoesOn(5000);
    engine.PlaylistNext(0);
    engine.PlaylistNext(0);
    deck.expectItGoesOn(5000);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPlaying);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 1);
    EXPECT_TRUE(deck.bench.events.isEmpty()) << deck.bench.events.join(u", "_s).toStdString();
    engine.PausePlayer(0);
    engine.PlaylistNext(0);
    deck.bench.pull(1000);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPaused);
}

TEST(Skipping, TwoStepsInARowGoTwoEntriesFar) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s, u"tone.ogg"_s});
    bench.engine().PlaylistPlayItem(0, 0);
    eventsAfter(bench, 2);
    bench.events.clear();
    bench.engine().PlaylistNext(0);
    bench.engine().PlaylistNext(0);
    EXPECT_THAT(eventsAfter(bench, 2), ElementsAre(u"started 0"_s, u"now 0 2"_s));
}

TEST(Transport, WhatIsTakenOffTheListWhileStoppedIsOnTheDeckNoMore) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(30000);
    engine.StopPlayer(0);
    EXPECT_EQ(engine.LengthMs(0), 2000);
    engine.PlaylistRemoveItem(0, 1);
    EXPECT_EQ(engine.GetPosition(0), 0) << "the other entry is no matter";
    engine.PlaylistRemoveItem(0, 0);
    EXPECT_EQ(engine.GetPosition(0), -1);
    EXPECT_EQ(engine.LengthMs(0), -1);
    EXPECT_EQ(engine.Peaks(0), nullptr);
    engine.PlaySound(0);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusStopped);
}

TEST(Transport, EmptyListWrongIndexAndWrongPlayerDoNothing) {
    CaptureBench bench;
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    engine.PlaylistNext(0);
    engine.PlaylistPrevious(0);
    engine.Forward(0);
    engine.Seek(0, 50);
    engine.PausePlayer(0);
    engine.ResumePlayer(0);
    engine.StopPlayer(0);
    engine.PlaySound(0);
    engine.FadePlayer(0, 99, 0, 100);
    engine.PlaylistPlayItem(7, 0);
    engine.PlaylistRemoveItem(0, 0);
    engine.PlaylistMoveItem(0, 0, 1);
    EXPECT_EQ(engine.PlaylistLoad(-1, u"x"_s, 1), 1);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusStopped);
    EXPECT_EQ(engine.GetPosition(0), -1);
    EXPECT_EQ(engine.GetPosition(9), -1);
    EXPECT_TRUE(bench.events.isEmpty());
}

TEST(Transport, NextWhilePausedStaysPausedAndAtTheEndsNothingMoves) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(3000);
    engine.PausePlayer(0);
    bench.pull(1000);
    engine.PlaylistNext(0);
    EXPECT_TRUE(waitUntil([&] { return bench.events.contains(u"now 0 1"_s); }));
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPaused);
    EXPECT_EQ(engine.GetPosition(0), 0);
    engine.PlaylistNext(0);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 1);
    engine.ResumePlayer(0);
    EXPECT_EQ(maxDifference(bench.pull(3000), cut(decoded(u"tone.mp3"_s), 0, 3000)), 0.0);
    engine.StopPlayer(0);
    engine.PlaylistPrevious(0);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 0);
    EXPECT_TRUE(waitUntil([&] { return bench.events.last() == u"now 0 0"_s; }));
    engine.PlaylistPrevious(0);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 0);
}

TEST(Transport, TheListMayChangeUnderWhatPlays) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"music.mp3"_s, u"tone.ogg"_s, u"tone.flac"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 1);
    bench.pull(3000);
    engine.PlaylistMoveItem(0, 1, 3);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 3);
    engine.PlaylistMoveItem(0, 3, 0);
    engine.PlaylistRemoveItem(0, 0);  // the one that plays; what takes its place comes next
    EXPECT_EQ(engine.PlaylistNowPlaying(0), -1);
    EXPECT_EQ(engine.GetPlayerStatus(0), player::StatusPlaying);
    bench.pullUntil(u"now 0 0"_s);
    EXPECT_EQ(engine.PlaylistGetItemInfo(0, 0, player::ItemInfoName), u"tone.wav"_s);
    while (engine.PlaylistGetCount(0) > 0) engine.PlaylistRemoveItem(0, 0);
    EXPECT_TRUE(waitUntil([&] {
        bench.pull(4096);
        return engine.GetPosition(0) < 0;
    }));
    EXPECT_TRUE(bench.events.last().startsWith(u"ended 0"_s));
}

TEST(Transport, AReloadedListGoesOnWhereItIs) {
    const TempFolder folder;
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s});
    auto& engine = bench.engine();
    const QString file = folder.file(u"list.m3u"_s);
    ASSERT_EQ(engine.PlaylistSave(0, file, player::FormatM3u), 0);
    engine.PlaylistPlayItem(0, 0);
    bench.pull(3000);
    ASSERT_EQ(engine.PlaylistLoad(0, file, 1), 0);
    EXPECT_EQ(engine.PlaylistNowPlaying(0), 0);
    bench.pullUntil(u"now 0 1"_s);
}

TEST(Release, TheFileMayBeReplacedWhileItPlays) {
    const TempFolder folder;
    const auto copy = scratchCopy("tone.wav", folder.path());
    const QString path = platform::toQString(copy);
    CaptureBench bench(QStringList{path});
    auto& engine = bench.engine();
    const auto expected = decoded(u"tone.wav"_s);
    engine.PlaylistPlayItem(0, 0);
    const auto first = bench.pull(2000);
    {
        const player::FileRelease release(engine, path);
        // On Linux the open files of this very process tell.
        for (const QString& link : QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries))
            EXPECT_NE(QFile::symLinkTarget(u"/proc/self/fd/"_s + link), path);
        ASSERT_TRUE(QFile::remove(path));
        std::filesystem::copy(fixture("tone.wav"), copy);
    }
    const auto rest = bench.pull(86200);
    EXPECT_EQ(maxDifference(first, cut(expected, 0, 2000)), 0.0);
    EXPECT_EQ(maxDifference(rest, cut(expected, 2000, 86200)), 0.0);
}

TEST(Release, AFileWrittenOverHasItsNewLengthAndPeaks) {
    const TempFolder folder;
    const auto copy = scratchCopy("tone.wav", folder.path());
    const QString path = platform::toQString(copy);
    CaptureBench bench(QStringList{path});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(2000);
    engine.StopPlayer(0);
    ASSERT_TRUE(waitUntil([&] { return engine.Peaks(0) && engine.Peaks(0)->measured == 1.0; }));
    const auto before = engine.Peaks(0);
    EXPECT_EQ(engine.LengthMs(0), 2000);
    int changes = 0;
    QObject::connect(&engine, &player::PlayerEngine::PeaksChanged, [&](int) { ++changes; });
    {
        const player::FileRelease release(engine, path);
        std::filesystem::remove(copy);
        std::filesystem::copy(fixture("music.wav"), copy);
    }
    EXPECT_TRUE(waitUntil([&] { return engine.LengthMs(0) == 20000; })) << engine.LengthMs(0);
    EXPECT_TRUE(waitUntil([&] { return changes > 0; }));
    EXPECT_TRUE(waitUntil([&] { return engine.Peaks(0) && engine.Peaks(0)->measured == 1.0; }));
    EXPECT_NE(engine.Peaks(0)->columns[1000].high, before->columns[1000].high);
}

/// A file that keeps whoever reads it waiting until the test lets go.
class Stuck final : public player::SoundSource {
  public:
    explicit Stuck(std::shared_ptr<std::atomic<bool>> stuck) : stuck_(std::move(stuck)) {}
    int rate() const override { return 44100; }
    int channels() const override { return 2; }
    std::int64_t position() const override { return position_; }
    std::int64_t frames() override { return 44100 * 600; }
    std::size_t read(float* interleaved, std::size_t frames) override {
        while (*stuck_) std::this_thread::yield();
        std::fill_n(interleaved, 2 * frames, 0.25F);
        position_ += std::int64_t(frames);
        return frames;
    }
    void seek(std::int64_t frame) override { position_ = frame; }

  private:
    std::shared_ptr<std::atomic<bool>> stuck_;
    std::int64_t position_ = 0;
};

TEST(Release, ADecoderThatHangsHoldsNobodyUp) {
    const auto stuck = std::make_shared<std::atomic<bool>>(false);
    CaptureBench bench([stuck](const QString&) { return std::make_unique<Stuck>(stuck); });
    bench.list({u"/a.wav"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(2000);
    *stuck = true;
    engine.Peaks(0);
    engine.SeekMs(0, 5000);
    { const player::FileRelease release(engine, u"/a.wav"_s); }
    EXPECT_TRUE(*stuck) << "it came back while the decoder still hangs";
    *stuck = false;
}

TEST(Release, AFileThatIsGoneAfterwardsEndsQuietly) {
    const TempFolder folder;
    const QString path = platform::toQString(scratchCopy("music.wav", folder.path()));
    CaptureBench bench(QStringList{path, u"tone.wav"_s});
    auto& engine = bench.engine();
    engine.PlaylistPlayItem(0, 0);
    bench.pull(2000);
    {
        const player::FileRelease release(engine, path);
        engine.Seek(0, 10000);
        ASSERT_TRUE(QFile::remove(path));
    }
    bench.pullUntil(u"now 0 1"_s);
}

/// A file that can be read up to a point.
class BadHalfway final : public player::SoundSource {
  public:
    int rate() const override { return 44100; }
    int channels() const override { return 2; }
    std::int64_t position() const override { return position_; }
    std::int64_t frames() override { return 88200; }
    std::size_t read(float* interleaved, std::size_t frames) override {
        if (position_ >= 20000) throw platform::Error("The disk is bad.");
        std::fill_n(interleaved, 2 * frames, 0.25F);
        position_ += std::int64_t(frames);
        return frames;
    }
    void seek(std::int64_t frame) override { position_ = frame; }

  private:
    std::int64_t position_ = 0;
};

TEST(Skipping, AFileThatBreaksOffGivesWayToTheNext) {
    std::atomic<bool> urlOpened = false;
    CaptureBench bench([&urlOpened](const QString& path) -> std::unique_ptr<player::SoundSource> {
        urlOpened = urlOpened || path.contains(u"://"_s);
        if (path == u"/bad.mp3"_s) return std::make_unique<BadHalfway>();
        return player::openWithDecoder(path);
    });
    bench.list({u"/bad.mp3"_s, u"http://127.0.0.1:9/x.mp3"_s, u"tone.wav"_s});
    bench.engine().PlaylistPlayItem(0, 0);
    bench.pullUntil(u"now 0 2"_s);
    EXPECT_FALSE(urlOpened);
}

TEST(Commands, InAnyOrderAndAnyHurry) {
    CaptureBench bench(QStringList{u"tone.wav"_s, u"tone.mp3"_s, u"/none/x.mp3"_s,
                                   u"tone-48k.wav"_s, u"tone.ogg"_s});
    auto& engine = bench.engine();
    unsigned random = 12345;
    for (int i = 0; i < 300; ++i) {
        random = random * 1103515245U + 12345U;
        const auto value = std::int16_t(random >> 16 & 0x7FFF);
        const auto player = std::int16_t(value % 7 == 0 ? 1 : 0);
        switch (value % 11) {
            case 0:
                engine.PlaylistPlayItem(player, std::int16_t(value % 5));
                break;
            case 1:
                engine.PlaylistNext(player);
                break;
            case 2:
                engine.PlaylistPrevious(player);
                break;
            case 3:
                engine.Seek(player, value % 2000);
                break;
            case 4:
                engine.PausePlayer(player);
                break;
            case 5:
                engine.ResumePlayer(player);
                break;
            case 6:
                engine.StopPlayer(player);
                break;
            case 7:
                engine.SetVolume(player, std::int16_t(value % 100));
                break;
            case 8:
                engine.PlaylistMoveItem(0, std::int16_t(value % 5), 2);
                break;
            case 9:
                engine.FadePlayer(player, 99, 50, 200);
                break;
            default:
                engine.LoadSound(1, fixturePath(u"tone-mono.wav"_s));
                break;
        }
        engine.GetPosition(0);
        std::vector<float> bands(16);
        engine.Spectrum(0, bands);
        waitUntil([] { return true; });
    }
    engine.StopPlayer(0);
    engine.StopPlayer(1);
    engine.SetVolume(0, 99);
    EXPECT_EQ(engine.PlaylistGetCount(0), 5);
    // After all that, a track still comes through as it is.
    bench.list({u"tone-48k.wav"_s});
    engine.PlaylistPlayItem(0, 5);
    auto all = bench.pull(3000, 48000);
    const auto more = bench.pull(3000, 48000);
    all.insert(all.end(), more.begin(), more.end());
    const auto expected = decoded(u"tone-48k.wav"_s);
    EXPECT_EQ(maxDifference(cut(all, 2048, 3000), cut(expected, 2048, 3000)), 0.0);
}

}  // namespace
