// SPDX-License-Identifier: GPL-3.0-or-later
// What the disk is told, in which order, and what a refusal of the system does.
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include <gmock/gmock.h>

#include "platform/file/Copy.h"
#include "platform/file/FileId.h"
#include "platform/file/Move.h"
#include "platform/file/Replacement.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Interposed.h"
#include "tests/support/NotHere.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
namespace file = platform::file;
using support::interposed;
using test::errorOf;
using test::namesIn;
using test::readFile;
using test::writeFile;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

void save(const fs::path& target, const std::string& text) {
    file::replaceWith(target, std::as_bytes(std::span(text)));
}

mode_t modeOf(const fs::path& path) {
    struct stat about {};
    return ::stat(path.c_str(), &about) == 0 ? about.st_mode & 07777 : 0;
}

int refuse(int reason) {
    errno = reason;
    return -1;
}

class Commit : public testing::Test {
  protected:
    Commit() { writeFile(folder / "song.mp3", "old"); }

    /// Notes every sync and every rename in `events`.
    void note() {
        interposed.fsync = [this](int open) {
            const fs::path path = support::pathOf(open);
            events.push_back(fs::is_directory(path) ? "sync folder" : "sync file");
            return support::systemFsync(open);
        };
        interposed.rename = [this](const char* from, const char* to) {
            events.push_back("rename");
            return support::systemRename(from, to);
        };
    }

    support::TempFolder folder;
    std::vector<std::string> events;
    support::InterposedReset reset;
};

TEST_F(Commit, TheFileIsOnTheDiskBeforeItsNameAndTheFolderAfter) {
    note();
    save(folder / "song.mp3", "new");
    EXPECT_THAT(events, ElementsAre("sync file", "rename", "sync folder"));
}

TEST_F(Commit, AFileThatCannotBeSyncedReplacesNothing) {
    interposed.fsync = [](int) { return refuse(EIO); };
    EXPECT_THAT(errorOf([&] { save(folder / "song.mp3", "new"); }), HasSubstr("song.mp3"));
    EXPECT_EQ(readFile(folder / "song.mp3"), "old");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("song.mp3"));
}

// Seen where a system takes the old file away and then cannot move the new one.
TEST_F(Commit, TheNewContentIsKeptWhereTheOldFileIsGone) {
    interposed.rename = [](const char*, const char* to) {
        ::unlink(to);
        return refuse(EIO);
    };
    const std::string error = errorOf([&] { save(folder / "song.mp3", "new"); });
    interposed = {};
    const auto names = namesIn(folder.path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_THAT(error, HasSubstr(names.front()));
    EXPECT_EQ(readFile(folder / names.front()), "new");

    // Nobody sweeps it, in whatever folder it comes to lie.
    const support::TempFolder elsewhere;
    fs::rename(folder / names.front(), elsewhere / names.front());
    save(elsewhere / "other.mp3", "other");
    EXPECT_EQ(readFile(elsewhere / names.front()), "new");
}

TEST_F(Commit, WhatTheStampSaysIsWhatLiesThere) {
    file::Replacement replacement(folder / "song.mp3");
    replacement.write("new", 3);
    const file::Stamp stamp = replacement.commit();
    EXPECT_EQ(stamp, file::Stamp::of(folder / "song.mp3"));
    writeFile(folder / "song.mp3", "newer");
    EXPECT_NE(stamp, file::Stamp::of(folder / "song.mp3"));
}

TEST_F(Commit, TheStampTellsFilesOfOneSizeApart) {
    writeFile(folder / "other.mp3", "wld");
    const timespec times[] = {{1, 0}, {1, 0}};
    for (const char* name : {"song.mp3", "other.mp3"})
        ASSERT_EQ(::utimensat(AT_FDCWD, (folder / name).c_str(), times, 0), 0);
    const auto before = file::Stamp::of(folder / "song.mp3");
    EXPECT_NE(before, file::Stamp::of(folder / "other.mp3"));  // by identity alone
    const timespec later[] = {{1, 0}, {2, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "song.mp3").c_str(), later, 0), 0);
    EXPECT_NE(before, file::Stamp::of(folder / "song.mp3"));  // by time alone
}

TEST_F(Commit, ALinkAndTheModeBehindItStay) {
    ::chmod((folder / "song.mp3").c_str(), 0640);
    fs::create_symlink("song.mp3", folder / "link.mp3");
    save(folder / "link.mp3", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.mp3"));
    EXPECT_EQ(readFile(folder / "song.mp3"), "new");
    EXPECT_EQ(modeOf(folder / "song.mp3"), 0640U);
}

// Only root can make the file of another group that this is about.
TEST_F(Commit, AnOwnerThatCannotBeKeptPreventsNothing) {
    if (::geteuid() != 0) return support::notHere("only root may give files to others");
    ASSERT_EQ(::chown((folder / "song.mp3").c_str(), 12345, 23456), 0);
    ASSERT_EQ(::chmod((folder / "song.mp3").c_str(), 06674), 0);
    interposed.fchown = [](int, uid_t, gid_t) { return refuse(EPERM); };
    save(folder / "song.mp3", "new");
    EXPECT_EQ(readFile(folder / "song.mp3"), "new");
    EXPECT_EQ(modeOf(folder / "song.mp3"), 0644U) << "more rights than anybody had";
}

TEST_F(Commit, AGroupThatCanBeKeptIsKept) {
    if (::geteuid() != 0) return support::notHere("only root may give files to others");
    ASSERT_EQ(::chown((folder / "song.mp3").c_str(), 12345, 23456), 0);
    ASSERT_EQ(::chmod((folder / "song.mp3").c_str(), 0664), 0);
    std::vector<gid_t> groups;
    interposed.fchown = [&](int, uid_t user, gid_t group) {
        if (user != static_cast<uid_t>(-1)) return refuse(EPERM);
        groups.push_back(group);
        return 0;
    };
    save(folder / "song.mp3", "new");
    EXPECT_THAT(groups, ElementsAre(23456U));
}

TEST_F(Commit, ACopyNeedsNoTimes) {
    interposed.futimens = [](int) { return refuse(EPERM); };
    file::copy(folder / "song.mp3", folder / "copy.mp3");
    EXPECT_EQ(readFile(folder / "copy.mp3"), "old");
}

TEST_F(Commit, ACopyHasTheModeOfItsSource) {
    const mode_t mask = ::umask(022);
    for (const mode_t mode : {0600U, 0640U, 0444U, 0755U}) {
        ::chmod((folder / "song.mp3").c_str(), mode);
        file::copy(folder / "song.mp3", folder / "copy.mp3");
        EXPECT_EQ(modeOf(folder / "copy.mp3"), mode);
        fs::remove(folder / "copy.mp3");
    }
    ::umask(077);
    file::copy(folder / "song.mp3", folder / "copy.mp3");
    EXPECT_EQ(modeOf(folder / "copy.mp3"), 0700U);
    ::umask(mask);
}

TEST_F(Commit, MovingAcrossFileSystemsSyncsBeforeItRemoves) {
    const test::FolderElsewhere elsewhere(folder.path());
    bool there = true;
    interposed.fsync = [&](int open) {
        events.push_back(fs::is_directory(support::pathOf(open)) ? "sync folder" : "sync file");
        there = there && fs::exists(folder / "song.mp3");
        return support::systemFsync(open);
    };
    file::move(folder / "song.mp3", elsewhere.path() / "song.mp3");
    EXPECT_THAT(events, ElementsAre("sync file", "sync folder"));
    EXPECT_TRUE(there) << "the old file was removed too early";
    EXPECT_FALSE(fs::exists(folder / "song.mp3"));

    writeFile(folder / "next.mp3", "next");
    interposed.fsync = [](int) { return refuse(EIO); };
    EXPECT_NE(errorOf([&] { file::move(folder / "next.mp3", elsewhere.path() / "next.mp3"); }), "");
    EXPECT_EQ(readFile(folder / "next.mp3"), "next");
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("song.mp3"));
}

// In a process of its own, which dies with the copy in hand.
TEST_F(Commit, WhatAKilledCopyLeftIsRemovedByTheNext) {
    writeFile(folder / "song.mp3", test::noise(std::size_t{40} << 20));
    const support::TempFolder target;
    const pid_t child = ::fork();
    if (child == 0) {
        file::copy(folder / "song.mp3", target / "song.mp3", file::Existing::Replace,
                   [](std::int64_t, std::int64_t) { return ::raise(SIGKILL) != 0; });
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(namesIn(target.path()).size(), 1U);
    EXPECT_NE(namesIn(target.path()).front(), "song.mp3");
    file::copy(folder / "song.mp3", target / "other.mp3");
    EXPECT_THAT(namesIn(target.path()), ElementsAre("other.mp3"));
}

// Where the system copies nothing by itself, or no more, the rest is read and written.
TEST_F(Commit, ACopyGoesOnByHandWhereTheSystemGivesUp) {
    const std::string bytes = test::noise(3'000'001);
    writeFile(folder / "long.wav", bytes);
    for (const size_t bySystem : {size_t{0}, size_t{100'000}}) {
        bool begun = bySystem == 0;
        interposed.copyFileRange = [&](int from, off_t* in, int to, off_t* out, size_t) {
            if (std::exchange(begun, true)) return ssize_t{refuse(ENOSYS)};
            return support::systemCopyFileRange(from, in, to, out, bySystem);
        };
        file::copy(folder / "long.wav", folder / "copy.wav");
        EXPECT_TRUE(readFile(folder / "copy.wav") == bytes) << bySystem;

        begun = bySystem == 0;
        file::Replacement joined(folder / "song.mp3");
        joined.write("head", 4);
        joined.copyFrom(folder / "long.wav", 12'345, 2'000'000);
        joined.commit();
        EXPECT_TRUE(readFile(folder / "song.mp3") == "head" + bytes.substr(12'345, 2'000'000));
    }
}

TEST_F(Commit, ADiskThatFailsACopyIsNotAskedToDoItByHand) {
    writeFile(folder / "long.wav", test::noise(300'001));
    interposed.copyFileRange = [](int, off_t*, int, off_t*, size_t) {
        return ssize_t{refuse(EIO)};
    };
    interposed.pwrite = [](int, const void*, size_t, off_t) -> ssize_t {
        ADD_FAILURE() << "written by hand";
        return refuse(EIO);
    };
    EXPECT_THAT(errorOf([&] { file::copy(folder / "long.wav", folder / "song.mp3"); }),
                HasSubstr("song.mp3"));
    EXPECT_EQ(readFile(folder / "song.mp3"), "old");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("long.wav", "song.mp3"));
}

TEST_F(Commit, ADiskThatFillsUpWhileCopyingByHandLeavesTheOldFile) {
    writeFile(folder / "long.wav", test::noise(3'000'001));
    interposed.copyFileRange = [](int, off_t*, int, off_t*, size_t) {
        return ssize_t{refuse(ENOSYS)};
    };
    interposed.pwrite = [](int open, const void* bytes, size_t count, off_t at) {
        return at > 0 ? ssize_t{refuse(ENOSPC)} : support::systemPwrite(open, bytes, count, at);
    };
    EXPECT_THAT(errorOf([&] { file::copy(folder / "long.wav", folder / "song.mp3"); }),
                HasSubstr("No space left"));
    EXPECT_EQ(readFile(folder / "song.mp3"), "old");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("long.wav", "song.mp3"));
}

}  // namespace
