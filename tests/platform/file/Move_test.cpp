// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Move.h"

#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "platform/file/Move.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Irregular.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class FileMove : public testing::Test {
  protected:
    FileMove() { writeFile(folder / "old.mp3", "sound"); }
    support::TempFolder folder;
};

}  // namespace

TEST_F(FileMove, RefusesWhatIsNoRegularFile) {
    for (const fs::path& one : support::makeIrregular(folder.path(), ".wav")) {
        EXPECT_THAT(errorOf([&] { platform::file::rename(one, folder / "new.wav"); }),
                    HasSubstr("not a regular file"));
        EXPECT_TRUE(fs::exists(fs::symlink_status(one)));
    }
    EXPECT_FALSE(fs::exists(folder / "new.wav"));
}

TEST_F(FileMove, GivesTheNewName) {
    platform::file::rename(folder / "old.mp3", folder / "new.mp3");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("new.mp3"));
    EXPECT_EQ(readFile(folder / "new.mp3"), "sound");
}

TEST_F(FileMove, NeverReplacesAFile) {
    writeFile(folder / "new.mp3", "other");
    fs::create_symlink(folder / "nowhere", folder / "dangling.mp3");
    fs::create_hard_link(folder / "old.mp3", folder / "OLD.mp3");
    for (const std::string name : {"new.mp3", "dangling.mp3", "OLD.mp3", "old.mp3"}) {
        EXPECT_THAT(errorOf([&] { platform::file::rename(folder / "old.mp3", folder / name); }),
                    HasSubstr("File exists"))
            << name;
    }
    EXPECT_EQ(readFile(folder / "old.mp3"), "sound");
    EXPECT_EQ(readFile(folder / "new.mp3"), "other");
    EXPECT_THAT(namesIn(folder.path()),
                ElementsAre("OLD.mp3", "dangling.mp3", "new.mp3", "old.mp3"));
}

TEST_F(FileMove, ChangesTheCaseOfLetters) {
    platform::file::rename(folder / "old.mp3", folder / "Old.mp3");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("Old.mp3"));
}

TEST_F(FileMove, AnErrorNamesBothFilesAndTheReason) {
    const std::string error =
        errorOf([&] { platform::file::rename(folder / "gone.mp3", folder / "new.mp3"); });
    EXPECT_THAT(error, HasSubstr("gone.mp3"));
    EXPECT_THAT(error, HasSubstr("new.mp3"));
    EXPECT_THAT(error, HasSubstr("No such file"));
}

TEST_F(FileMove, WorksWhileTheFileIsHeldOpen) {
    const int held = ::open((folder / "old.mp3").c_str(), O_RDONLY);
    platform::file::rename(folder / "old.mp3", folder / "new.mp3");
    char byte = 0;
    EXPECT_EQ(::read(held, &byte, 1), 1);
    ::close(held);
    EXPECT_EQ(byte, 's');
}

TEST_F(FileMove, ReservationGivesTheNewName) {
    EXPECT_FALSE(platform::file::renameOverReservation(folder / "old.mp3", folder / "new.mp3"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("new.mp3"));
    EXPECT_EQ(readFile(folder / "new.mp3"), "sound");
}

TEST_F(FileMove, ReservationNeverReplacesAFileNorStays) {
    writeFile(folder / "new.mp3", "other");
    EXPECT_EQ(platform::file::renameOverReservation(folder / "old.mp3", folder / "new.mp3"),
              std::errc::file_exists);
    EXPECT_TRUE(platform::file::renameOverReservation(folder / "gone.mp3", folder / "third.mp3"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("new.mp3", "old.mp3"));
    EXPECT_EQ(readFile(folder / "new.mp3"), "other");
}

TEST_F(FileMove, DoesNotCrossFileSystemsButMovingDoes) {
    const FolderElsewhere elsewhere(folder.path());
    const fs::path there = elsewhere.path() / "new.mp3";
    EXPECT_EQ(platform::file::tryRename(folder / "old.mp3", there), std::errc::cross_device_link);
    platform::file::move(folder / "old.mp3", there);
    EXPECT_EQ(readFile(there), "sound");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre());
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("new.mp3"));
}

TEST_F(FileMove, MovingNeverReplacesAFileEither) {
    const FolderElsewhere elsewhere(folder.path());
    writeFile(elsewhere.path() / "new.mp3", "other");
    writeFile(folder / "new.mp3", "third");
    for (const fs::path& there : {elsewhere.path() / "new.mp3", folder / "new.mp3"})
        EXPECT_THAT(errorOf([&] { platform::file::move(folder / "old.mp3", there); }),
                    HasSubstr("exists"));
    EXPECT_EQ(readFile(folder / "old.mp3"), "sound");
    EXPECT_EQ(readFile(elsewhere.path() / "new.mp3"), "other");
    EXPECT_EQ(readFile(folder / "new.mp3"), "third");
}
