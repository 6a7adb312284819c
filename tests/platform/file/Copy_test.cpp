// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Copy.h"

#include <chrono>
#include <cstdint>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/platform/file/FileTools.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class FileCopy : public testing::Test {
  protected:
    fs::path source(const std::string& bytes = noise(3'000'001)) {
        writeFile(folder / "source.mp3", bytes);
        return folder / "source.mp3";
    }
    support::TempFolder folder;
};

}  // namespace

TEST_F(FileCopy, CopiesBytesAndTimes) {
    const fs::path from = source();
    const auto then = fs::last_write_time(from) - std::chrono::hours(10'000);
    fs::last_write_time(from, then);
    platform::file::copy(from, folder / "copy.mp3");
    EXPECT_EQ(readFile(folder / "copy.mp3"), noise(3'000'001));
    EXPECT_EQ(fs::last_write_time(folder / "copy.mp3"), then);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("copy.mp3", "source.mp3"));
}

TEST_F(FileCopy, CopiesAnEmptyFile) {
    platform::file::copy(source({}), folder / "copy.mp3");
    EXPECT_EQ(fs::file_size(folder / "copy.mp3"), 0U);
}

TEST_F(FileCopy, CopiesToAnotherFileSystem) {
    const FolderElsewhere elsewhere(folder.path());
    platform::file::copy(source(), elsewhere.path() / "copy.mp3");
    EXPECT_EQ(readFile(elsewhere.path() / "copy.mp3"), noise(3'000'001));
    EXPECT_EQ(fs::last_write_time(elsewhere.path() / "copy.mp3"),
              fs::last_write_time(folder / "source.mp3"));
}

// Files of /proc say they are empty and cannot be copied inside the kernel.
TEST_F(FileCopy, CopiesWhatOnlyReadingReveals) {
    platform::file::copy("/proc/version", folder / "version");
    EXPECT_EQ(readFile(folder / "version"), readFile("/proc/version"));
}

TEST_F(FileCopy, ReplacesAnExistingFileWhole) {
    writeFile(folder / "copy.mp3", "something older");
    platform::file::copy(source("new"), folder / "copy.mp3");
    EXPECT_EQ(readFile(folder / "copy.mp3"), "new");
}

TEST_F(FileCopy, RefusesAnExistingFileWhereToldTo) {
    writeFile(folder / "copy.mp3", "something older");
    const std::string error = errorOf([&] {
        platform::file::copy(source("new"), folder / "copy.mp3", platform::file::Existing::Refuse);
    });
    EXPECT_THAT(error, HasSubstr("a file of that name exists"));
    EXPECT_EQ(readFile(folder / "copy.mp3"), "something older");
}

TEST_F(FileCopy, RefusesACopyOntoItself) {
    const fs::path from = source("sound");
    fs::create_directory(folder / "sub");
    fs::create_hard_link(from, folder / "hard.mp3");
    fs::create_symlink(from, folder / "soft.mp3");
    fs::create_directory_symlink(folder.path(), folder / "again");
    for (const std::string other :
         {"source.mp3", "sub/../source.mp3", "hard.mp3", "soft.mp3", "again/source.mp3"}) {
        const std::string error = errorOf([&] { platform::file::copy(from, folder / other); });
        EXPECT_THAT(error, HasSubstr("both are the same file")) << other;
    }
    EXPECT_EQ(readFile(from), "sound");
    EXPECT_TRUE(fs::is_symlink(folder / "soft.mp3"));
}

TEST_F(FileCopy, AnErrorNamesBothFilesAndTheReason) {
    const std::string error =
        errorOf([&] { platform::file::copy(folder / "gone.mp3", folder / "copy.mp3"); });
    EXPECT_THAT(error, HasSubstr("gone.mp3"));
    EXPECT_THAT(error, HasSubstr("copy.mp3"));
    EXPECT_THAT(error, HasSubstr("No such file"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre());
}

// Opening a pipe would wait for its other end for ever.
TEST_F(FileCopy, RefusesWhatIsNotAFile) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(errorOf([&] { platform::file::copy(folder / "pipe", folder / "copy.mp3"); }),
                HasSubstr("not a regular file"));
    EXPECT_THAT(errorOf([&] { platform::file::copy(folder.path(), folder / "copy.mp3"); }),
                HasSubstr("not a regular file"));
    fs::create_directory(folder / "copy.mp3");
    EXPECT_THAT(errorOf([&] { platform::file::copy(source("x"), folder / "copy.mp3"); }),
                HasSubstr("not a regular file"));
}

TEST_F(FileCopy, RefusesANameTheFileSystemCannotHold) {
    const fs::path from = source("x");
    const std::string error =
        errorOf([&] { platform::file::copy(from, folder / (std::string(300, 'n') + ".mp3")); });
    EXPECT_THAT(error, HasSubstr("name too long"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("source.mp3"));
}

TEST_F(FileCopy, AFullDiskLeavesTheOldFileAndNoRemains) {
    const fs::path from = source();
    writeFile(folder / "copy.mp3", "something older");
    std::string error;
    {
        const FileSizeLimit full(1'000'000);
        error = errorOf([&] { platform::file::copy(from, folder / "copy.mp3"); });
    }
    EXPECT_THAT(error, HasSubstr("copy.mp3"));
    EXPECT_EQ(readFile(folder / "copy.mp3"), "something older");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("copy.mp3", "source.mp3"));
}

TEST_F(FileCopy, TellsItsProgressUpToTheEnd) {
    std::int64_t last = 0;
    platform::file::copy(source(), folder / "copy.mp3", platform::file::Existing::Replace,
                         [&](std::int64_t copied, std::int64_t total) {
                             EXPECT_GE(copied, last);
                             EXPECT_EQ(total, 3'000'001);
                             last = copied;
                             return true;
                         });
    EXPECT_EQ(last, 3'000'001);
}

TEST_F(FileCopy, CanBeAbandoned) {
    const std::string error = errorOf([&] {
        platform::file::copy(source(), folder / "copy.mp3", platform::file::Existing::Replace,
                             [](std::int64_t, std::int64_t) { return false; });
    });
    EXPECT_THAT(error, HasSubstr("copy.mp3"));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("source.mp3"));
}

TEST_F(FileCopy, NamesMayHoldAnything) {
    for (const std::string name : {"né à l'été.mp3", "音楽.mp3", "\"quoted\" & 100%.mp3", " .mp3",
                                   "two\nlines.mp3", "back\\slash.mp3"}) {
        platform::file::copy(source(name), folder / name);
        EXPECT_EQ(readFile(folder / name), name);
    }
}
