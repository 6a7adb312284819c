// SPDX-License-Identifier: GPL-3.0-or-later
// Titles and durations, and the list files as the engine reads and writes them.
#include <QFile>
#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "player/engine/PlaylistStore.h"
#include "tests/player/CaptureBench.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using player::PlayerEngine;
using support::info;
using support::waitUntil;

TEST(ItemInfo, DurationText) {
    EXPECT_EQ(player::formatDuration(0), u"0:00"_s);
    EXPECT_EQ(player::formatDuration(185000), u"3:05"_s);
    EXPECT_EQ(player::formatDuration(59499), u"0:59"_s);
    EXPECT_EQ(player::formatDuration(59500), u"1:00"_s);
    EXPECT_EQ(player::formatDuration(3723000), u"62:03"_s);
    EXPECT_EQ(player::formatDuration(-1), QString());
}

TEST(ItemInfo, AFewFilesAreCompleteWhenTheCallReturns) {
    support::CaptureBench bench;
    auto& engine = bench.engine();
    engine.PlaylistInsertFile(0, support::fixturePath(u"tone.mp3"_s), 0);
    EXPECT_EQ(info(engine, 0, player::ItemInfoPath), support::fixturePath(u"tone.mp3"_s));
    EXPECT_EQ(info(engine, 0, player::ItemInfoName), u"tone.mp3"_s);
    ASSERT_TRUE(waitUntil([&] { return info(engine, 0, player::ItemInfoDuration) == u"0:02"_s; }));
    EXPECT_EQ(info(engine, 0, player::ItemInfoTitle), u"Tone"_s);
    engine.PlaylistInsertFile(0, support::fixturePath(u"music.wav"_s), 0);
    ASSERT_TRUE(waitUntil([&] { return info(engine, 0, player::ItemInfoDuration) == u"0:20"_s; }));
    EXPECT_EQ(info(engine, 0, player::ItemInfoTitle), QString());
    EXPECT_EQ(info(engine, 1, player::ItemInfoTitle), u"Tone"_s);
    EXPECT_EQ(info(engine, 0, 5), QString());
    EXPECT_EQ(info(engine, 2, 0), QString());
    EXPECT_EQ(info(engine, -1, 0), QString());
}

TEST(ItemInfo, MissingFilesAndUrlsShowWhatTheListSays) {
    const support::TempFolder folder;
    QFile list(folder.file(u"list.m3u"_s));
    ASSERT_TRUE(list.open(QIODevice::WriteOnly));
    list.write("#EXTM3U\n#EXTINF:65,Gone\n/none/gone.mp3\n#EXTINF:-1,Radio\nhttp://h/s\n");
    list.close();
    support::CaptureBench bench;
    auto& engine = bench.engine();
    ASSERT_EQ(engine.PlaylistLoad(0, list.fileName(), 1), 0);
    EXPECT_EQ(info(engine, 0, player::ItemInfoTitle), u"Gone"_s);
    EXPECT_EQ(info(engine, 0, player::ItemInfoDuration), u"1:05"_s);
    EXPECT_EQ(info(engine, 1, player::ItemInfoTitle), u"Radio"_s);
    EXPECT_EQ(info(engine, 1, player::ItemInfoDuration), QString());
    EXPECT_EQ(info(engine, 1, player::ItemInfoPath), u"http://h/s"_s);
}

TEST(ItemInfo, ADurationThatTheHeaderGetsWrongIsCorrectedByPlaying) {
    // An MP3 of 20 s whose Info tag was made for it, cut after a quarter: the tag still says 20 s.
    const support::TempFolder folder;
    auto bytes = support::readBytes(support::fixture("music.mp3"));
    bytes.resize(bytes.size() / 4);
    support::writeBytes(folder / "cut.mp3", bytes);
    support::CaptureBench bench;
    auto& engine = bench.engine();
    engine.PlaylistInsertFile(0, folder.file(u"cut.mp3"_s), 0);
    ASSERT_TRUE(waitUntil([&] { return info(engine, 0, player::ItemInfoDuration) == u"0:05"_s; }));
    engine.PlaylistPlayItem(0, 0);
    ASSERT_TRUE(waitUntil([&] {
        bench.pull(512);
        return engine.LengthMs(0) > 0;
    }));
    EXPECT_NEAR(double(engine.LengthMs(0)), 5000, 100);
}

TEST(ListFiles, LoadSaveLoadKeepsEveryEntryInBothFormats) {
    const support::TempFolder folder;
    const QStringList paths{
        support::fixturePath(u"tone.mp3"_s), u"/none/Zoë & 日本.mp3"_s,
        u"http://host:80/a%20b?c=d"_s,       u"C:\\Music\\x.wav"_s,
        u"/none/#1 100%25 done.mp3"_s,       support::fixturePath(u"tone.mp3"_s)};
    support::CaptureBench bench;
    auto& engine = bench.engine();
    bench.list(paths);
    for (const int format : {player::FormatM3u, player::FormatPls}) {
        const QString file = folder.file(u"list%1"_s.arg(format));
        ASSERT_EQ(engine.PlaylistSave(0, file, format), 0);
        ASSERT_EQ(engine.PlaylistLoad(1, file, 1), 0);
        ASSERT_EQ(engine.PlaylistGetCount(1), paths.size());
        for (int i = 0; i < paths.size(); ++i)
            EXPECT_EQ(engine.PlaylistGetItemInfo(1, std::int16_t(i), player::ItemInfoPath),
                      paths[i]);
    }
}

TEST(ListFiles, AFailureChangesNothingAndHasASentence) {
    const support::TempFolder folder;
    support::CaptureBench bench;
    auto& engine = bench.engine();
    bench.list({u"tone.mp3"_s});
    EXPECT_EQ(engine.PlaylistLoad(0, support::fixturePath(u"tone.mp3"_s), 1), 1);
    EXPECT_TRUE(engine.LastError().contains(u"tone.mp3"_s)) << engine.LastError().toStdString();
    EXPECT_EQ(engine.PlaylistLoad(0, u"Playlist loaded: New list not yet saved."_s, 1), 1);
    EXPECT_EQ(engine.PlaylistGetCount(0), 1);
    EXPECT_EQ(engine.PlaylistSave(0, folder.file(u"none/x.m3u"_s), 0), 1);
    EXPECT_TRUE(engine.LastError().contains(u"none/x.m3u"_s));
    QFile many(folder.file(u"many.m3u"_s));
    ASSERT_TRUE(many.open(QIODevice::WriteOnly));
    for (int i = 0; i < 32768; ++i) many.write("/none/a.mp3\n");
    many.close();
    EXPECT_EQ(engine.PlaylistLoad(0, many.fileName(), 1), 1);
    EXPECT_EQ(engine.PlaylistGetCount(0), 1);
}

TEST(ListFiles, The32768thEntryIsRefused) {
    support::CaptureBench bench;
    auto& engine = bench.engine();
    QStringList many;
    for (int i = 0; i < 32766; ++i) many.append(u"/none/a.mp3"_s);
    ASSERT_EQ(engine.PlaylistInsertFiles(0, many, 0), 0);
    engine.PlaylistInsertFile(0, u"/none/b.mp3"_s, 32766);
    EXPECT_EQ(engine.PlaylistGetCount(0), 32767);
    engine.PlaylistInsertFile(0, u"/none/c.mp3"_s, 0);
    EXPECT_EQ(engine.PlaylistGetCount(0), 32767);
    EXPECT_EQ(info(engine, 0, player::ItemInfoName), u"a.mp3"_s);
    EXPECT_EQ(info(engine, 32766, player::ItemInfoName), u"b.mp3"_s);
}

}  // namespace
