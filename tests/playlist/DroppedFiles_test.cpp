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
using testing::IsEmpty;

namespace {

struct Dropped : testing::Test {
    support::TempFolder folder;

    QString make(const QString& name) {
        const auto path = platform::toPath(folder.file(name));
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "x";
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

TEST_F(Dropped, TheFirstListIsTheList) {
    const QString first = make(u"one.M3U"_s);
    const QString second = make(u"two.pls"_s);
    const DroppedFiles dropped = sortOut({first, second});
    EXPECT_EQ(dropped.list, first);
    EXPECT_THAT(dropped.files, IsEmpty());
}

TEST_F(Dropped, MissingFilesAreNamed) {
    const DroppedFiles dropped = sortOut({folder.file(u"no such.mp3"_s)});
    EXPECT_THAT(dropped.files, IsEmpty());
    EXPECT_THAT(dropped.missing, ElementsAre(folder.file(u"no such.mp3"_s)));
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
