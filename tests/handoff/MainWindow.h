// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <gmock/gmock.h>

#include "app/frmMain.h"
#include "platform/Paths.h"
#include "player/engine/PlayerEngine.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Answers.h"
#include "tests/support/Gui.h"
#include "tests/support/TempFolder.h"
#include "widgets/ListView.h"
#include "widgets/ProgressBar.h"

namespace test {

/// The program's main window over a folder "music" with three small files.
class MainWindow : public testing::Test {
  protected:
    MainWindow() {
        for (const char* name : {"one.mp3", "two.mp3", "three.wav"}) {
            std::filesystem::create_directories(folder / "music");
            writeFile(folder / "music" / name, std::string("sound of ") + name);
        }
    }
    void SetUp() override { ASSERT_TRUE(support::activate(window)); }
    void TearDown() override {
        EXPECT_TRUE(support::allAnswered());
        support::forgetAnswers();
    }

    QString at(const QString& name) const { return folder.file(name); }
    std::string utf8(const QString& name) const { return at(name).toStdString(); }
    /// Paths below the folder, as if dropped on the list.
    void open(const QStringList& names) {
        QStringList paths;
        for (const QString& name : names) paths += at(name);
        openPaths(paths);
    }
    void openPaths(const QStringList& paths) {
        window.openPaths(paths);
        EXPECT_TRUE(support::waitForDisk(window));
    }
    void openThree() {
        open({QStringLiteral("music/one.mp3"), QStringLiteral("music/two.mp3"),
              QStringLiteral("music/three.wav")});
    }
    void select(std::initializer_list<int> rows) {
        list().setAllSelected(false);
        for (const int row : rows) list().setSelected(row, true);
    }

    widgets::ListView& list() { return support::find<widgets::ListView>(window, "ListView1"); }
    widgets::ProgressBar& bar() { return support::find<widgets::ProgressBar>(window, "Bar"); }
    QString caption() { return support::find<QLabel>(window, "Label7").text(); }
    QStringList entries() {
        auto& engine = support::find<player::PlayerEngine>(window, "PlayerEngine1");
        QStringList paths;
        for (std::int16_t i = 0; i < engine.PlaylistGetCount(0); ++i)
            paths += engine.PlaylistGetItemInfo(0, i, player::ItemInfoPath);
        return paths;
    }

    support::TempFolder folder;
    app::frmMain window;
};

}  // namespace test
