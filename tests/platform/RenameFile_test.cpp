// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/RenameFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "platform/MoveFile.h"
#include "tests/platform/FileTools.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class RenameFile : public testing::Test {
  protected:
    RenameFile() { writeFile(folder / "old.mp3", "sound"); }
    support::TempFolder folder;
};

}  // namespace

TEST_F(RenameFile, GivesTheNewName) {
    platform::renameFile(folder / "old.mp3", folder / "new.mp3");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("new.mp3"));
    EXPECT_EQ(readFile(folder / "new.mp3"), "sound");
}

TEST_F(RenameFile, NeverReplacesAFile) {
    writeFile(folder / "new.mp3", "other");
    fs::create_symlink(folder / "nowhere", folder / "dangling.mp3");
    fs::create_hard_link(folder / "old.mp3", folder / "OLD.mp3");
    for (const std::string name : {"new.mp3", "dangling.mp3", "OLD.mp3", "old.mp3"}) {
        EXPECT_THAT(errorOf([&] { platform::renameFile(folder / "old.mp3", folder / name); }),
                    HasSubstr("File exists"))
            << name;
    }
    EXPECT_EQ(readFile(folder / "old.mp3"), "sound");
    EXPECT_EQ(readFile(folder / "new.mp3"), "other");
    EXPECT_THAT(namesIn(folder.path()),
                ElementsAre("OLD.mp3", "dangling.mp3", "new.mp3", "old.mp3"));
}

TEST_F(RenameFile, ChangesTheCaseOfLetters) {
    platform::renameFile(folder / "old.mp3", folder / "Old.mp3");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("Old.mp3"));
}

TEST_F(RenameFile, AnErrorNamesBothFilesAndTheReason) {
    const std::string error =
        errorOf([&] { platform::renameFile(folder / "gone.mp3", folder / "new.mp3"); });
    EXPECT_THAT(error, HasSubstr("gone.mp3"));
    EXPECT_THAT(error, HasSubstr("new.mp3"));
    EXPECT_THAT(error, HasSubstr("No such file"));
}

TEST_F(RenameFile, WorksWhileTheFileIsHeldOpen) {
    const int held = ::open((folder / "old.mp3").c_str(), O_RDONLY);
    platform::renameFile(folder / "old.mp3", folder / "new.mp3");
    char byte = 0;
    EXPECT_EQ(::read(held, &byte, 1), 1);
    ::close(held);
    EXPECT_EQ(byte, 's');
}

TEST_F(RenameFile, ReservationGivesTheNewName) {
    EXPECT_FALSE(platform::renameOverReservation(folder / "old.mp3", folder / "new.mp3"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("new.mp3"));
    EXPECT_EQ(readFile(folder / "new.mp3"), "sound");
}

TEST_F(RenameFile, ReservationNeverReplacesAFileNorStays) {
    writeFile(folder / "new.mp3", "other");
    EXPECT_EQ(platform::renameOverReservation(folder / "old.mp3", folder / "new.mp3"),
              std::errc::file_exists);
    EXPECT_TRUE(platform::renameOverReservation(folder / "gone.mp3", folder / "third.mp3"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("new.mp3", "old.mp3"));
    EXPECT_EQ(readFile(folder / "new.mp3"), "other");
}

TEST_F(RenameFile, DoesNotCrossFileSystemsButMovingDoes) {
    const FolderElsewhere elsewhere(folder.path());
    const fs::path there = elsewhere.path() / "new.mp3";
    EXPECT_EQ(platform::tryRenameFile(folder / "old.mp3", there), std::errc::cross_device_link);
    platform::moveFile(folder / "old.mp3", there);
    EXPECT_EQ(readFile(there), "sound");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre());
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("new.mp3"));
}

TEST_F(RenameFile, MovingNeverReplacesAFileEither) {
    const FolderElsewhere elsewhere(folder.path());
    writeFile(elsewhere.path() / "new.mp3", "other");
    writeFile(folder / "new.mp3", "third");
    for (const fs::path& there : {elsewhere.path() / "new.mp3", folder / "new.mp3"})
        EXPECT_THAT(errorOf([&] { platform::moveFile(folder / "old.mp3", there); }),
                    HasSubstr("exists"));
    EXPECT_EQ(readFile(folder / "old.mp3"), "sound");
    EXPECT_EQ(readFile(elsewhere.path() / "new.mp3"), "other");
    EXPECT_EQ(readFile(folder / "new.mp3"), "third");
}
