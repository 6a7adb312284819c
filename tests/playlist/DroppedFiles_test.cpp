// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/DroppedFiles.h"

#include <filesystem>
#include <fstream>

#include <QDir>
#include <gmock/gmock.h>

#include "platform/Paths.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using playlist::DroppedFiles;
using playlist::sortOut;
using testing::ElementsAre;

namespace {

struct Dropped : testing::Test {
    support::TempFolder folder;

    QString make(const QString& name) {
        const auto path = platform::toPath(folder.file(name));
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "x";
        return folder.file(name);
    }
    QString list(const QString& name, const QString& entry) {
        std::ofstream(platform::toPath(folder.file(name))) << entry.toStdString() << "\n";
        return folder.file(name);
    }
};

}  // namespace

TEST_F(Dropped, FilesKeepTheOrderTheyWereDroppedIn) {
    const QString b = make(u"b.mp3"_s);
    const QString a = make(u"a.wav"_s);
    EXPECT_THAT(sortOut({b, a}).files, ElementsAre(b, a));
}

TEST_F(Dropped, AFolderStandsForItsSoundFilesInNaturalOrder) {
    const QString ten = make(u"Album/Track 10.mp3"_s);
    const QString two = make(u"Album/track 2.OGG"_s);
    make(u"Album/cover.jpg"_s);
    const QString deep = make(u"Album/Disc 2/1.wma"_s);
    const QString deeper = make(u"Album/Disc 10/1.mp2"_s);
    EXPECT_THAT(sortOut({folder.file(u"Album"_s)}).files, ElementsAre(two, ten, deep, deeper));
}

TEST_F(Dropped, AFileNamedByItselfIsTakenWhateverItIs) {
    const QString flac = make(u"x.flac"_s);
    EXPECT_THAT(sortOut({flac}).files, ElementsAre(flac));
}

TEST_F(Dropped, ListsAloneReplaceAndTheOthersAreAdded) {
    const QString song = make(u"one.mp3"_s);
    const QString first = list(u"one.M3U"_s, song);
    const QString second = list(u"two.m3u8"_s, song);
    const DroppedFiles dropped = sortOut({first, second});
    EXPECT_EQ(dropped.list, first);
    EXPECT_THAT(dropped.files, ElementsAre(song));
}

TEST_F(Dropped, AListAmongSoundsIsAdded) {
    const QString song = make(u"one.mp3"_s);
    const QString other = make(u"two.mp3"_s);
    const DroppedFiles dropped = sortOut({other, list(u"one.m3u"_s, song)});
    EXPECT_EQ(dropped.list, QString());
    EXPECT_THAT(dropped.files, ElementsAre(other, song));
}

TEST_F(Dropped, WhatIsNoSoundOrNotThereIsNamed) {
    const QString song = make(u"one.mp3"_s);
    const QString text = make(u"notes.txt"_s);
    make(u"bad.m3u"_s);
    const DroppedFiles dropped =
        sortOut({text, folder.file(u"no such.mp3"_s), folder.file(u"bad.m3u"_s), song});
    EXPECT_THAT(dropped.files, ElementsAre(song));
    ASSERT_EQ(dropped.refused.size(), 3);
    EXPECT_TRUE(dropped.refused[0].contains(text));
    EXPECT_TRUE(dropped.refused[1].contains(u"no such.mp3"_s));
    EXPECT_TRUE(dropped.refused[2].contains(u"bad.m3u"_s));
}

TEST(Refused, AsManyAsThereAreTheTextFitsOnAScreen) {
    const QStringList lines(500, QString(3000, u'x'));
    const QString text = playlist::refusedText(lines);
    EXPECT_LT(text.count(u'\n'), 10);
    EXPECT_LT(text.size(), 2000);
    EXPECT_TRUE(text.contains(u"492 more"_s));
    EXPECT_EQ(playlist::refusedText({u"one"_s}), u"one"_s);
}

TEST_F(Dropped, NamesThatAreNoUtf8AreTaken) {
    if (platform::nativeSeparator() != u'/') return;
    const auto path = folder / "Album/\xE9t\xE9.mp3";
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "x";
    for (const QString& given : {platform::toQString(path), folder.file(u"Album"_s)}) {
        const DroppedFiles dropped = sortOut({given});
        ASSERT_EQ(dropped.files.size(), 1);
        EXPECT_EQ(platform::toPath(dropped.files[0]), path);
    }
}

TEST_F(Dropped, RelativePathsAreTakenFromTheCurrentFolder) {
    make(u"here.mp3"_s);
    const QString before = QDir::currentPath();
    QDir::setCurrent(platform::toQString(folder.path()));
    const DroppedFiles dropped = sortOut({u"here.mp3"_s});
    QDir::setCurrent(before);
    ASSERT_EQ(dropped.files.size(), 1);
    EXPECT_TRUE(QDir::isAbsolutePath(dropped.files[0]));
}

TEST_F(Dropped, ALinkThatLeadsRoundInACircleIsNotFollowed) {
    const QString song = make(u"Album/1.mp3"_s);
    std::filesystem::create_directory_symlink(platform::toPath(folder.file(u"Album"_s)),
                                              platform::toPath(folder.file(u"Album/again"_s)));
    EXPECT_THAT(sortOut({folder.file(u"Album"_s)}).files, ElementsAre(song));
}
