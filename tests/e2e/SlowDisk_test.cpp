// SPDX-License-Identifier: GPL-3.0-or-later
// Lists and folders on a disk that does not answer yet.
#include <atomic>
#include <fstream>
#include <future>

#include "playlist/DiskQueue.h"
#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

struct SlowDisk : MainWindow {
    /// From now on the disk answers nothing.
    void SetUp() override {
        MainWindow::SetUp();
        disk().add([answer = disk_.get_future().share()](const std::stop_token&) {
            answer.wait();
            return playlist::DiskQueue::Answer();
        });
    }
    void TearDown() override {
        if (!answers_) letAnswer();
        MainWindow::TearDown();
    }

    void letAnswer() {
        answers_ = true;
        disk_.set_value();
    }
    playlist::DiskQueue& disk() { return find<playlist::DiskQueue>(*window, "DiskQueue"); }
    QString listFile(const QStringList& songs) {
        std::ofstream file(platform::toPath(folder.file(u"list.m3u"_s)));
        for (const QString& song : songs) file << song.toStdString() << "\r\n";
        return folder.file(u"list.m3u"_s);
    }

  private:
    std::promise<void> disk_;
    bool answers_ = false;
};

}  // namespace

TEST_F(SlowDisk, TheWindowLivesUntilTheListIsThere) {
    answerFileDialog(listFile({song(u"x.mp3"_s), song(u"y.mp3"_s)}));
    press("CommandLoad1");
    ASSERT_TRUE(allAnswered());
    EXPECT_EQ(list().rowCount(), 0);
    addByDialog(song(u"meanwhile.mp3"_s));
    EXPECT_EQ(titles(), QStringList{u"meanwhile.mp3"_s});
    letAnswer();
    ASSERT_TRUE(waitForDisk(*window));
    EXPECT_EQ(titles(), QStringList({u"x.mp3"_s, u"y.mp3"_s}));
    EXPECT_EQ(text("Label7"), folder.file(u"list.m3u"_s));
}

TEST_F(SlowDisk, WhatIsGivenOneAfterTheOtherKeepsItsOrder) {
    std::filesystem::create_directory(folder / "deep");
    window->openPaths({listFile({song(u"1.mp3"_s)})});
    window->openPaths({song(u"2.mp3"_s)});
    window->openPaths({platform::toQString(scratchCopy("tone.mp3", folder / "deep", "3.mp3"))});
    window->openPaths({folder.file(u"deep"_s)});
    EXPECT_EQ(list().rowCount(), 0);
    letAnswer();
    ASSERT_TRUE(waitForDisk(*window));
    QStringList names;
    for (std::int16_t entry = 0; entry < engine().PlaylistGetCount(0); ++entry)
        names += engine().PlaylistGetItemInfo(0, entry, player::ItemInfoName);
    EXPECT_EQ(names, QStringList({u"1.mp3"_s, u"2.mp3"_s, u"3.mp3"_s, u"3.mp3"_s}));
}

TEST_F(SlowDisk, ALockedListWaitsForItsLock) {
    addByDialog(song(u"1.mp3"_s));
    window->openPaths({song(u"2.mp3"_s)});
    press("CommandPlay1");
    std::atomic<bool> fetched = false;  // what comes after the path, so the path too
    disk().add([&fetched](const std::stop_token&) {
        fetched = true;
        return playlist::DiskQueue::Answer();
    });
    letAnswer();
    ASSERT_TRUE(waitFor([&fetched] { return fetched.load(); }));
    settle();
    EXPECT_EQ(list().rowCount(), 1);
    press("CommandStop1");
    ASSERT_TRUE(waitForDisk(*window));
    EXPECT_EQ(list().rowCount(), 2);
}

// Else this test does not end.
TEST_F(SlowDisk, ClosingDoesNotWaitForIt) {
    bool answered = false;
    disk().add([&answered](const std::stop_token&) { return [&answered] { answered = true; }; });
    window.reset();
    letAnswer();
    settle();
    EXPECT_FALSE(answered);
}
