// SPDX-License-Identifier: GPL-3.0-or-later
// What no menu item reaches, and what no window can be brought to do.
#include "handoff/Handoffs.h"

#include <limits>
#include <memory>

#include <gmock/gmock.h>

#include "app/modules/modMain.h"
#include "handoff/HandoffFiles.h"
#include "platform/Paths.h"
#include "tests/handoff/Companion.h"
#include "tests/handoff/FakeWindow.h"
#include "tests/platform/file/FileTools.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using test::Companion;
using test::FakeWindow;

namespace {

class Handoffs : public testing::Test {
  protected:
    Handoffs() { modMain::SelectedCount = 0; }
    ~Handoffs() override {
        fs::remove_all(platform::toPath(platform::fixedPath(u"C:\\Zolvo_Temp"_s)));
    }
    FakeWindow window;
    std::int16_t minutes = 0;
};

}  // namespace

TEST_F(Handoffs, EveryCompanionHasItsPath) {
    const std::vector<std::pair<handoff::Companion, std::string>> companions = {
        {handoff::Companion::GlyphwellPro, "Glyphwell_Pro.exe"},
        {handoff::Companion::Quillon, "Quillon.exe"},
        {handoff::Companion::Pelorus, "Pelorus.exe"},
        {handoff::Companion::Scallop, "Scallop.exe"},
        {handoff::Companion::MarlCrestHelp, "Marl_Crest_Help.EXE"},
        {handoff::Companion::MarlCrestHelp2, "MarlCrest_Help.exe"}};
    for (const auto& [companion, path] : companions) {
        const Companion program(path);
        handoff::launch(companion);
        EXPECT_TRUE(program.started()) << path;
        EXPECT_EQ(program.arguments(), 0) << path;
    }
}

TEST_F(Handoffs, AMissingCompanionIsPassedOver) {
    handoff::LaunchCompanion(u"\\Fornax\\Missing.EXE"_s);
    handoff::launch(handoff::Companion::Scallop);
}

TEST_F(Handoffs, TheDiscWriterGetsBurnDat) {
    const Companion writer("Fornax/Fornax_Disc2.EXE");
    minutes = 78;
    handoff::AudioCdDiscHandoff(window, window, minutes, 1);
    EXPECT_TRUE(writer.started());
    EXPECT_EQ(window.saved, QStringList{u"1 "_s + handoff::burnFile()});
    EXPECT_TRUE(fs::is_directory(platform::toPath(handoff::burnFile()).parent_path()));
    EXPECT_EQ(window.shown, QStringList());
}

TEST_F(Handoffs, TheDiscWriterAsksOverSeventyEightMinutes) {
    minutes = 79;
    window.answer = false;
    const fs::path workingFolder = platform::toPath(handoff::burnFile()).parent_path();
    fs::remove_all(workingFolder);
    handoff::AudioCdDiscHandoff(window, window, minutes, 0);
    EXPECT_EQ(window.saved, QStringList());
    EXPECT_FALSE(fs::exists(workingFolder)) << "the question comes before the folder";
    EXPECT_EQ(window.shown,
              QStringList{u"You are either over, or dangerously close, to the max data\r\n"
                          u"(normally 80 mins) allowed to write to an Audio CD disc.\r\n"
                          u"\r\nProceed?  "_s});
}

TEST_F(Handoffs, TheDataDiscIsNeverTooLong) {
    const Companion writer("Fornax/Fornax_Disc2.EXE");
    minutes = std::numeric_limits<std::int16_t>::max();
    handoff::DataCdHandoff(window, window, 0);
    EXPECT_TRUE(writer.started());
    EXPECT_EQ(window.saved, QStringList{u"0 "_s + handoff::burnDataFile()});
    EXPECT_EQ(window.shown, QStringList());
}

TEST_F(Handoffs, AFailedSaveStartsNothing) {
    const Companion disc("Fornax/Fornax_Disc2.EXE");
    const Companion shelf("Fornax/Fornax_Shelf.exe");
    window.saveResult = 5;
    handoff::AudioCdHandoff(window, window, minutes, 0);
    handoff::AudioCdDiscHandoff(window, window, minutes, 0);
    handoff::DataCdHandoff(window, window, 0);
    EXPECT_EQ(window.shown, QStringList(3, u"Error saving playlist"_s));
    // A program started now would be seen before one that is started after it.
    const Companion last("Quillon.exe");
    handoff::launch(handoff::Companion::Quillon);
    EXPECT_TRUE(last.started());
    EXPECT_FALSE(disc.hasStarted());
    EXPECT_FALSE(shelf.hasStarted());
}

// Row 0 always counts, the last row never does, and nobody clears the count.
TEST_F(Handoffs, TheTagEditorsCountIsOdd) {
    window.paths = {u"/a.mp3"_s, u"/b.mp3"_s, u"/c.mp3"_s};
    window.selected = {1, 3};
    handoff::TagHandoff(window.all());
    EXPECT_EQ(modMain::SelectedCount, 2);
    EXPECT_EQ(window.barMaximum, 3);
    handoff::TagHandoff(window.all());
    EXPECT_EQ(modMain::SelectedCount, 4);
    EXPECT_EQ(window.barMaximum, 5);
    modMain::SelectedCount = std::numeric_limits<std::int16_t>::max();
    handoff::TagHandoff(window.all());
    EXPECT_EQ(modMain::SelectedCount, std::numeric_limits<std::int16_t>::max());
}

// With no row at all, row 0 is not looked at either.
TEST_F(Handoffs, TheTagEditorsCountOfAnEmptyList) {
    handoff::TagHandoff(window.all());
    EXPECT_EQ(modMain::SelectedCount, 0);
    EXPECT_EQ(window.barMaximum, 1);
}

TEST_F(Handoffs, ALineThatCannotBeWrittenIsLeftOut) {
    window.paths = {u"/a.mp3"_s, u"/two\nlines.mp3"_s, u"/c.mp3"_s};
    window.selected = {1, 2, 3};
    handoff::TagHandoff(window.all());
    EXPECT_EQ(test::readFile(platform::toPath(handoff::tagFile())), "/a.mp3\r\n/c.mp3\r\n");
}

TEST_F(Handoffs, TheTagEditorIsStartedWithoutAFileToo) {
    const Companion editor("Glyphwell.EXE");
    fs::create_directories(platform::toPath(handoff::tagFile()));
    window.paths = {u"/a.mp3"_s};
    window.selected = {1};
    handoff::TagHandoff(window.all());
    EXPECT_TRUE(editor.started());
}

// Where the list cannot be written, the editor must not find the one of another time.
TEST_F(Handoffs, TheTagEditorGetsNoOldList) {
    const fs::path list = platform::toPath(handoff::tagFile());
    fs::create_directories(list.parent_path());
    test::writeFile(list, "/old.mp3\r\n");
    window.paths = {u"/a.mp3"_s};
    window.selected = {1};
    const test::FileSizeLimit full(4);
    handoff::TagHandoff(window.all());
    EXPECT_THAT(test::namesIn(list.parent_path()), testing::IsEmpty());
}

TEST_F(Handoffs, AnEditorWithoutItsListIsNotStarted) {
    const Companion editor("Zolvo.exe");
    const fs::path list = platform::toPath(handoff::editorFile());
    fs::create_directories(list);
    window.paths = {u"/a.mp3"_s};
    window.selected = {1};
    EXPECT_THAT(test::errorOf([&] { handoff::openInEditor(window); }),
                testing::HasSubstr("editor.dat"));
    const Companion last("Quillon.exe");
    handoff::launch(handoff::Companion::Quillon);
    EXPECT_TRUE(last.started());
    EXPECT_FALSE(editor.hasStarted());
}
