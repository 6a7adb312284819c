// SPDX-License-Identifier: GPL-3.0-or-later
// When the closing message comes, the copies are on the device: a player may be unplugged.
#include <algorithm>
#include <filesystem>
#include <mutex>
#include <set>
#include <sys/stat.h>

#include <gmock/gmock.h>

#include "handoff/FileCommands.h"
#include "platform/Paths.h"
#include "platform/file/FileId.h"
#include "tests/handoff/FakeWindow.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Interposed.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using platform::file::FileId;

namespace {

/// Remembers what went to the device, and looks at the folder the moment a message comes.
class Watching : public test::FakeWindow {
    const fs::path target_;

  public:
    explicit Watching(const fs::path& target) : target_(target) {
        support::interposed.fsync = [this](int file) {
            struct stat about {};
            const std::lock_guard lock(mutex_);
            if (::fstat(file, &about) == 0) synced_.insert({about.st_dev, about.st_ino});
            // The folder's entries count as they are at this moment.
            if (S_ISDIR(about.st_mode)) named_ = test::namesIn(target_);
            return support::systemFsync(file);
        };
    }

    QString browseForFolder(const QString&) override { return chosen; }
    void showMessage(const QString& text) override {
        FakeWindow::showMessage(text);
        const std::lock_guard lock(mutex_);
        for (const std::string& name : test::namesIn(target_)) {
            const auto id = platform::file::idOf(target_ / name);
            if (!id || !synced_.contains(*id)) missing.push_back(name);
            if (!std::ranges::count(named_, name)) missing.push_back("the name " + name);
        }
        copies = test::namesIn(target_);
    }

    QString chosen = platform::toQString(target_);
    std::vector<std::string> missing;  ///< from the device, when the last message came
    std::vector<std::string> copies;

  private:
    std::mutex mutex_;
    std::set<FileId> synced_;
    std::vector<std::string> named_;
};

class Durable : public testing::Test {
  protected:
    Durable() {
        fs::create_directory(folder / "player");
        for (const char* name : {"one.mp3", "two.mp3"}) {
            test::writeFile(folder / name, test::noise(100000));
            window.paths += platform::toQString(folder / name);
        }
    }

    support::TempFolder folder;
    support::InterposedReset reset;
    Watching window{folder / "player"};
};

}  // namespace

TEST_F(Durable, TheFilesForAPlayerAreOnItWhenTheMessageComes) {
    window.chosen += u'/';  // as the root of a drive is picked
    handoff::copyToPlayer(window.all());
    EXPECT_EQ(window.shown, QStringList{u"Playlist files have been copied to the target."_s});
    EXPECT_THAT(window.copies, testing::ElementsAre("one.mp3", "two.mp3"));
    EXPECT_THAT(window.missing, testing::IsEmpty());
}

TEST_F(Durable, AProjectAndItsListAreOnTheDeviceWhenTheMessageComes) {
    handoff::copyToProjectFolder(window.all(), window);
    EXPECT_EQ(window.shown.size(), 1);
    EXPECT_THAT(window.copies, testing::ElementsAre("one.mp3", "temp.m3u", "two.mp3"));
    EXPECT_THAT(window.missing, testing::IsEmpty());
}

TEST_F(Durable, SoIsAListThatTakesTheOldOnesPlace) {
    test::writeFile(folder / "player/temp.m3u", "old.mp3\r\n");
    handoff::copyToProjectFolder(window.all(), window);
    EXPECT_THAT(window.missing, testing::IsEmpty());
    EXPECT_EQ(test::readFile(folder / "player/temp.m3u"), "one.mp3\r\ntwo.mp3\r\n");
}
