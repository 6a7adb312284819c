// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <QAbstractButton>
#include <QLabel>
#include <gmock/gmock.h>

#include "app/Skin.h"
#include "app/frmMain.h"
#include "platform/Paths.h"
#include "player/engine/PlayerEngine.h"
#include "tests/support/Answers.h"
#include "tests/support/Fixtures.h"
#include "tests/support/Gui.h"
#include "tests/support/TempFolder.h"
#include "widgets/ListView.h"

namespace support {

/// The real main window in its skin, on screen and active, with a folder for its files. Every box
/// that a test announces must have come by the end of the test.
struct MainWindow : testing::Test {
    TempFolder folder;
    std::unique_ptr<app::frmMain> window;

    void SetUp() override {
        if (qApp->styleSheet().isEmpty()) app::applySkin(*qApp);
        window = std::make_unique<app::frmMain>();
        ASSERT_TRUE(activate(*window));
    }

    void TearDown() override {
        EXPECT_EQ(forgetAnswers(), 0) << "announced boxes did not come";
        window.reset();
    }

    widgets::ListView& list() { return find<widgets::ListView>(*window, "ListView1"); }
    player::PlayerEngine& engine() { return find<player::PlayerEngine>(*window, "PlayerEngine1"); }
    QAbstractButton& button(const char* name) { return find<QAbstractButton>(*window, name); }
    QString text(const char* label) { return find<QLabel>(*window, label).text(); }
    void press(const char* name) { click(*window, name); }

    /// A copy of a fixture ("tone.mp3") under another name, ready to be listed.
    QString song(const QString& name, const char* fixtureName = "tone-untagged.mp3") {
        return platform::toQString(scratchCopy(fixtureName, folder.path(), name.toStdString()));
    }

    /// Opens files, folders and lists as if given as arguments, and waits until they are shown.
    void open(const QStringList& paths) {
        window->openPaths(paths);
        EXPECT_TRUE(waitForDisk(*window));
    }

    /// Adds a file as the user does, with the button and the dialog.
    void addByDialog(const QString& path) {
        answerFileDialog(path);
        press("CommandAddSong1");
        EXPECT_TRUE(allAnswered());
    }

    /// "1.mp3" … in the list, in this order, as if given as arguments.
    QStringList addSongs(int count) {
        QStringList songs;
        for (int i = 1; i <= count; ++i) songs.append(song(QStringLiteral("%1.mp3").arg(i)));
        open(songs);
        return songs;
    }

    QStringList titles() {
        QStringList texts;
        for (int row = 1; row <= list().rowCount(); ++row) texts.append(list().subItem(row, 2));
        return texts;
    }
};

}  // namespace support
