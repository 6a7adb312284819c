// SPDX-License-Identifier: GPL-3.0-or-later
#include <filesystem>
#include <fstream>

#include <QSignalSpy>

#include "effects/engine/AudioEditor.h"
#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

std::filesystem::path burnList() {
    return platform::toPath(platform::fixedPath(u"C:\\burn_list.dat"_s));
}

struct Startup : MainWindow {
    std::shared_ptr<const SeenBox> closeWith(QMessageBox::StandardButton answer) {
        auto seen = answerMessageBox(answer);
        EXPECT_TRUE(window->close()) << "closing cannot be refused";
        return seen;
    }
};

}  // namespace

TEST_F(Startup, TheWorkingFolderIsMadeAndMayBeThereAlready) {
    const auto folderPath = platform::toPath(platform::fixedPath(u"C:\\Zolvo_Temp"_s));
    EXPECT_TRUE(std::filesystem::is_directory(folderPath));
    std::ofstream(folderPath / "kept") << "x";
    const app::frmMain second;
    EXPECT_TRUE(std::filesystem::exists(folderPath / "kept"));
}

TEST_F(Startup, TheEditorWorksInTheWorkingFolder) {
    const auto& editor = find<effects::AudioEditor>(*window, "AudioEditor1");
    EXPECT_EQ(editor.TemporaryFolder(), platform::fixedPath(u"C:\\Zolvo_Temp\\"_s));
    EXPECT_FALSE(editor.HasSound());
}

TEST_F(Startup, TheSoundOfTheStartIsPlayedAndIsNoEntry) {
    const app::frmMain second;  // no event has passed yet
    auto& player = find<player::PlayerEngine>(second, "PlayerEngine1");
    EXPECT_EQ(player.GetPlayerStatus(0), player::StatusPlaying);
    EXPECT_EQ(player.PlaylistNowPlaying(0), -1);
    EXPECT_TRUE(waitFor([&] { return player.LengthMs(0) > 0; })) << "the sound beside the program";
    EXPECT_EQ(find<QLabel>(second, "Label1").text(), QString());
}

TEST_F(Startup, StartsWithAnEmptyList) {
    EXPECT_EQ(list().rowCount(), 0);
    EXPECT_EQ(text("Label7"), QString());
    EXPECT_EQ(text("Label2"), u"Total Duration (mm.s): 0.0"_s);
    EXPECT_EQ(text("Label4"), u"Tolal File Count: 0"_s);
    EXPECT_TRUE(list().hasFocus());
    EXPECT_TRUE(list().multiSelect());
}

TEST_F(Startup, ClosesWithoutAQuestionWithNoneOrOneEntry) {
    QSignalSpy closed(window.get(), &app::frmMain::closed);
    addSongs(1);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(closed.count(), 1);
    app::frmMain empty;
    ASSERT_TRUE(activate(empty));
    EXPECT_TRUE(empty.close());
    EXPECT_FALSE(empty.isVisible());
}

TEST_F(Startup, AsksWithTwoEntriesAndNoClosesAtOnce) {
    addSongs(2);
    const auto seen = closeWith(QMessageBox::No);
    EXPECT_EQ(seen->text, u"Do you want to save the current playlist before exit?  "_s);
    EXPECT_EQ(seen->title, u"Save playlist?"_s);
    EXPECT_EQ(seen->buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(seen->icon, QMessageBox::Question);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Startup, YesSavesTheListAndCloses) {
    addSongs(2);
    const auto seen = answerMessageBox(QMessageBox::Yes);
    answerFileDialog(folder.file(u"kept.m3u"_s));
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(seen->shown);
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "kept.m3u"));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Startup, YesAndACancelledDialogStillCloses) {
    addSongs(2);
    const auto seen = answerMessageBox(QMessageBox::Yes);
    const auto dialog = cancelFileDialog();
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(seen->shown && dialog->shown);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Startup, ClosingDeletesTheBurnList) {
    std::ofstream(burnList()) << "left over";
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(std::filesystem::exists(burnList()));
}

TEST_F(Startup, ClosingWithoutABurnListSaysNothing) {
    std::filesystem::remove(burnList());
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Startup, TheWorkingFolderStaysAfterClosing) {
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(
        std::filesystem::is_directory(platform::toPath(platform::fixedPath(u"C:\\Zolvo_Temp"_s))));
}
