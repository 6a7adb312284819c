// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Replacement.h"

#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/Error.h"
#include "tests/support/NotHere.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

void put(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string get(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

int filesIn(const fs::path& folder) {
    return static_cast<int>(std::distance(fs::directory_iterator(folder), {}));
}

void save(const fs::path& path, const std::string& text) {
    platform::file::Replacement file(path);
    file.write(text.data(), text.size());
    file.commit();
}

}  // namespace

TEST(Replacement, CreatesAndReplaces) {
    support::TempFolder folder;
    save(folder / "a.txt", "one");
    EXPECT_EQ(get(folder / "a.txt"), "one");
    save(folder / "a.txt", "two");
    EXPECT_EQ(get(folder / "a.txt"), "two");
    EXPECT_EQ(filesIn(folder.path()), 1);
}

TEST(Replacement, WithoutCommitNothingChanges) {
    support::TempFolder folder;
    put(folder / "a.txt", "old");
    {
        platform::file::Replacement file(folder / "a.txt");
        file.write("new", 3);
        EXPECT_EQ(file.temporary().parent_path(), fs::canonical(folder.path()));
        EXPECT_EQ(file.temporary().extension(), ".txt");
    }
    EXPECT_EQ(get(folder / "a.txt"), "old");
    EXPECT_EQ(filesIn(folder.path()), 1);
}

TEST(Replacement, ARefusedResultLeavesTheOldFile) {
    support::TempFolder folder;
    put(folder / "a.txt", "old");
    {
        platform::file::Replacement file(folder / "a.txt");
        file.write("new", 3);
        platform::file::Replacement::Checks checks;
        checks.verify = [](const fs::path& temporary) {
            EXPECT_EQ(get(temporary), "new");
            throw platform::Error("It is too short.");
        };
        EXPECT_THROW(file.commit(checks), platform::Error);
    }
    EXPECT_EQ(get(folder / "a.txt"), "old");
    EXPECT_EQ(filesIn(folder.path()), 1);
}

TEST(Replacement, TheFileBehindLinksIsReplaced) {
    support::TempFolder folder;
    fs::create_directory(folder / "real");
    put(folder / "real/a.txt", "old");
    fs::create_symlink("real/a.txt", folder / "second");
    fs::create_symlink(folder / "second", folder / "first");
    save(folder / "first", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "first"));
    EXPECT_TRUE(fs::is_symlink(folder / "second"));
    EXPECT_FALSE(fs::is_symlink(folder / "real/a.txt"));
    EXPECT_EQ(get(folder / "real/a.txt"), "new");
}

TEST(Replacement, ALinkToNothingIsFilled) {
    support::TempFolder folder;
    fs::create_symlink("later.txt", folder / "link");
    save(folder / "link", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(get(folder / "later.txt"), "new");
}

TEST(Replacement, LinksInACircleAreAnError) {
    support::TempFolder folder;
    fs::create_symlink("b", folder / "a");
    fs::create_symlink("a", folder / "b");
    EXPECT_THROW(platform::file::Replacement(folder / "a"), platform::Error);
}

TEST(Replacement, KeepsModeOwnerAndAttributes) {
    support::TempFolder folder;
    const fs::path path = folder / "a.txt";
    put(path, "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    const bool isRoot = ::geteuid() == 0;
    if (!isRoot) support::notHere("only root may give files to others");
    if (isRoot) {
        ASSERT_EQ(::chown(path.c_str(), 12345, 23456), 0);
    }
    const bool hasAttributes = ::setxattr(path.c_str(), "user.rating", "five", 4, 0) == 0;
    if (!hasAttributes) support::notHere("the file system keeps no extended attributes");
    save(path, "new");
    struct stat about {};
    ASSERT_EQ(::stat(path.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 07777, 0640U);
    EXPECT_EQ(about.st_uid, isRoot ? 12345U : ::geteuid());
    EXPECT_EQ(about.st_gid, isRoot ? 23456U : ::getegid());
    if (hasAttributes) {
        char value[8] = {};
        EXPECT_EQ(::getxattr(path.c_str(), "user.rating", value, sizeof value), 4);
        EXPECT_STREQ(value, "five");
    }
}

TEST(Replacement, FoldersAndMissingFoldersAreErrors) {
    support::TempFolder folder;
    fs::create_directory(folder / "folder");
    EXPECT_THROW(platform::file::Replacement(folder / "folder"), platform::Error);
    EXPECT_THROW(platform::file::Replacement(folder / "nowhere/a.txt"), platform::Error);
}

TEST(Replacement, CopiesStretchesOfOtherFiles) {
    support::TempFolder folder;
    put(folder / "source", "0123456789");
    platform::file::Replacement file(folder / "a.txt");
    file.write("<", 1);
    file.copyFrom(folder / "source", 2, 5);
    file.write(">", 1);
    EXPECT_EQ(file.position(), 7);
    EXPECT_THROW(file.copyFrom(folder / "source", 8, 5), platform::Error);
    file.seek(0);
    file.write("[", 1);
    file.commit();
    EXPECT_EQ(get(folder / "a.txt").substr(0, 7), "[23456>");
}

TEST(Replacement, RemovesWhatAKilledProcessLeft) {
    support::TempFolder folder;
    put(folder / ".tracksmith-abcdefgh0123.mp3", "half");
    put(folder / ".tracksmith-abcdefghijkl", "half");
    save(folder / "a.txt", "new");
    EXPECT_EQ(filesIn(folder.path()), 1);
    EXPECT_EQ(get(folder / "a.txt"), "new");
}

TEST(Replacement, RemovesNothingElse) {
    support::TempFolder folder;
    support::TempFolder elsewhere;
    put(elsewhere / "kept", "kept");
    for (const char* name :
         {".tracksmith-abcdefghijk.mp3", ".tracksmith-abcdefghijklm.mp3",
          ".tracksmith-abcdefghijkL", ".tracksmith-abcdefghijkl.tar.gz",
          ".tracksmith-abcdefghijkl~", ".tracksmith-abcdefghijkl-kept.mp3", ".tracksmith-",
          "tracksmith", "x.tracksmith-abcdefghijkl", ".tracksmith-abcdefghijk\xff"})
        put(folder / name, "kept");
    fs::create_directory(folder / ".tracksmith-aaaaaaaaaaaa.mp3");
    fs::create_symlink(elsewhere / "kept", folder / ".tracksmith-bbbbbbbbbbbb.mp3");
    fs::create_hard_link(elsewhere / "kept", folder / ".tracksmith-cccccccccccc.mp3");
    ASSERT_EQ(::mkfifo((folder / ".tracksmith-dddddddddddd").c_str(), 0600), 0);
    if (::geteuid() == 0) {
        put(folder / ".tracksmith-eeeeeeeeeeee.mp3", "another user's");
        ASSERT_EQ(::chown((folder / ".tracksmith-eeeeeeeeeeee.mp3").c_str(), 12345, 23456), 0);
    }
    const int before = filesIn(folder.path());
    save(folder / "a.txt", "new");
    EXPECT_EQ(filesIn(folder.path()), before + 1);
    EXPECT_EQ(get(elsewhere / "kept"), "kept");
}

TEST(Replacement, NamesThatNeedCare) {
    support::TempFolder folder;
    const std::string name = "it's \"ünïcode\" – 音楽 %20 .mp3";
    save(folder / name, "new");
    EXPECT_EQ(get(folder / name), "new");
}
