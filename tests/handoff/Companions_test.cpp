// SPDX-License-Identifier: GPL-3.0-or-later
// The menu items that hand files to companion programs.
#include <QLabel>

#include "app/modules/modMain.h"
#include "handoff/HandoffFiles.h"
#include "tests/handoff/Companion.h"
#include "tests/handoff/MainWindow.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using namespace support;
using namespace test;

namespace {

class Companions : public MainWindow {
  protected:
    Companions() { modMain::SelectedCount = 0; }
    ~Companions() override { fs::remove_all(platform::toPath(handoff::burnListFile())); }

    static bool exists(const QString& file) { return fs::exists(platform::toPath(file)); }
    /// What the engine writes for a list of these.
    std::string lines(const QStringList& names) const {
        std::string text;
        for (const QString& name : names) text += utf8(name) + "\r\n";
        return text;
    }
    /// Gives the only row a duration and waits until the totals have seen it.
    void setDuration(const QString& duration, const QString& total) {
        list().setSubItem(1, 1, duration);
        ASSERT_TRUE(waitFor([&] {
            return find<QLabel>(window, "Label2").text() == u"Total Duration (mm.s): "_s + total;
        }));
    }
    /// One entry of this length, which the audio writer is to get, once it is chosen.
    void burnOneOf(const QString& duration, const QString& total) {
        open({u"music/one.mp3"_s});
        setDuration(u"1:00"_s, u"1.0"_s);  // 78:31 shows as 78.5 too
        setDuration(duration, total);
        answerMessageBox(QMessageBox::Yes);
    }
    void run(const char* item) {
        const bool burning = QByteArray(item).contains("CDWriter");
        chooseFromMenu(window, burning ? "Button7" : "Button1", item);
        ASSERT_TRUE(allAnswered());
    }
};

const QString caution =
    u"You are either over, or dangerously close, to the max data\r\n"
    u"(normally 80 mins) allowed to write to an Audio CD disc.\r\n\r\nProceed?  "_s;

}  // namespace

TEST_F(Companions, TheAudioWriterCanStartAlone) {
    const Companion writer("Fornax/Fornax_Audio.EXE", handoff::burnListFile());
    openThree();
    const auto question = answerMessageBox(QMessageBox::No);
    run("mnuAudio_CDWriter");
    EXPECT_EQ(question->text,
              u"What to auto insert the loaded files (playlist) into the Audio Writer?"_s);
    EXPECT_EQ(question->title, u"What do you want to do?"_s);
    EXPECT_EQ(question->buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(question->icon, QMessageBox::Question);
    ASSERT_TRUE(writer.started());
    EXPECT_EQ(writer.found(), "none");
    EXPECT_EQ(writer.arguments(), 0);
}

TEST_F(Companions, TheAudioWriterFindsTheBurnList) {
    const Companion shelf("Fornax/Fornax_Shelf.exe", handoff::burnListFile());
    openThree();
    select({1});
    answerMessageBox(QMessageBox::Yes);
    run("mnuAudio_CDWriter");
    ASSERT_TRUE(shelf.started());
    EXPECT_EQ(shelf.found(), lines({u"music/one.mp3"_s, u"music/two.mp3"_s, u"music/three.wav"_s}));
    EXPECT_EQ(shelf.arguments(), 0);
}

TEST_F(Companions, AnEmptyListIsHandedOverToo) {
    const Companion shelf("Fornax/Fornax_Shelf.exe", handoff::burnListFile());
    answerMessageBox(QMessageBox::Yes);
    run("mnuAudio_CDWriter");
    ASSERT_TRUE(shelf.started());
    EXPECT_EQ(shelf.found(), "");
}

TEST_F(Companions, AMissingCompanionIsSilentAndItsFileIsWritten) {
    openThree();
    answerMessageBox(QMessageBox::Yes);
    run("mnuAudio_CDWriter");
    EXPECT_TRUE(exists(handoff::burnListFile()));
    run("mnuData_CDWriter");
    run("mnuEdit_IDTags_selected");
    run("mnuOpen_in_Editor");
}

TEST_F(Companions, ABurnListThatCannotBeSavedStartsNothing) {
    const Companion shelf("Fornax/Fornax_Shelf.exe", handoff::burnListFile());
    fs::create_directories(platform::toPath(handoff::burnListFile()) / "in the way");
    openThree();
    answerMessageBox(QMessageBox::Yes);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run("mnuAudio_CDWriter");
    EXPECT_EQ(error->text, u"Error saving playlist"_s);
    EXPECT_EQ(error->icon, QMessageBox::NoIcon);
    EXPECT_EQ(error->buttons, QMessageBox::Ok);
    EXPECT_FALSE(shelf.hasStarted());
}

TEST_F(Companions, SeventyEightAndAHalfMinutesPass) {
    const Companion shelf("Fornax/Fornax_Shelf.exe", handoff::burnListFile());
    burnOneOf(u"78:30"_s, u"78.5"_s);
    run("mnuAudio_CDWriter");
    EXPECT_TRUE(shelf.started());
}

TEST_F(Companions, OneSecondMoreAsksAndOkGoesOn) {
    const Companion shelf("Fornax/Fornax_Shelf.exe", handoff::burnListFile());
    burnOneOf(u"78:31"_s, u"78.5"_s);
    const auto asked = answerMessageBox(QMessageBox::Ok);
    run("mnuAudio_CDWriter");
    EXPECT_EQ(asked->text, caution);
    EXPECT_EQ(asked->title, u"CAUTION!"_s);
    EXPECT_EQ(asked->buttons, QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_EQ(asked->icon, QMessageBox::Warning);
    EXPECT_TRUE(shelf.started());
}

TEST_F(Companions, CancellingTheCautionWritesAndStartsNothing) {
    const Companion shelf("Fornax/Fornax_Shelf.exe", handoff::burnListFile());
    burnOneOf(u"80:00"_s, u"80.0"_s);
    answerMessageBox(QMessageBox::Cancel);
    run("mnuAudio_CDWriter");
    EXPECT_FALSE(exists(handoff::burnListFile()));
    EXPECT_FALSE(shelf.hasStarted());
}

TEST_F(Companions, TheDataWriterGetsNothing) {
    const Companion writer("Fornax/Fornax_Data.EXE", handoff::burnDataFile());
    openThree();
    run("mnuData_CDWriter");
    ASSERT_TRUE(writer.started());
    EXPECT_EQ(writer.found(), "none");
}

TEST_F(Companions, TheTagEditorGetsTheSelectedMp3s) {
    const Companion editor("Glyphwell.EXE", handoff::tagFile());
    for (const char* name : {"LOUD.MP3", "Mixed.Mp3", "é 音.mp3"})
        writeFile(folder / "music" / name, "sound");
    openThree();
    open({u"music/LOUD.MP3"_s, u"music/Mixed.Mp3"_s, u"music/é 音.mp3"_s});
    select({1, 3, 4, 5, 6});
    run("mnuEdit_IDTags_selected");
    ASSERT_TRUE(editor.started());
    EXPECT_EQ(editor.found(),
              lines({u"music/one.mp3"_s, u"music/LOUD.MP3"_s, u"music/é 音.mp3"_s}));
    EXPECT_EQ(modMain::SelectedCount, 5);  // row 0, 1, 3, 4, 5; the last one is not counted
    EXPECT_EQ(bar().maximum(), 6);
    EXPECT_FALSE(bar().isVisible());
}

TEST_F(Companions, TheTagEditorStartsWithAnEmptyFileToo) {
    const Companion editor("Glyphwell.EXE", handoff::tagFile());
    writeFile(folder / "music/Mixed.Mp3", "sound");
    open({u"music/Mixed.Mp3"_s});
    run("mnuEdit_IDTags_selected");
    ASSERT_TRUE(editor.started());
    EXPECT_EQ(editor.found(), "");
}

TEST_F(Companions, TheAudioEditorGetsTheFirstSelectedFile) {
    const Companion editor("Zolvo.exe", handoff::editorFile());
    openThree();
    select({2, 3});
    run("mnuOpen_in_Editor");
    ASSERT_TRUE(editor.started());
    EXPECT_EQ(editor.found(), lines({u"music/two.mp3"_s}));
    EXPECT_EQ(editor.arguments(), 0);
}

TEST_F(Companions, WithoutASelectionTheAudioEditorStays) {
    const Companion editor("Zolvo.exe", handoff::editorFile());
    fs::remove(platform::toPath(handoff::editorFile()));
    openThree();
    select({});
    run("mnuOpen_in_Editor");
    EXPECT_FALSE(exists(handoff::editorFile()));
    EXPECT_FALSE(editor.hasStarted());
}

TEST_F(Companions, WithoutTheWorkingFolderTheAudioEditorsFileIsAnError) {
    const Companion editor("Zolvo.exe", handoff::editorFile());
    openThree();
    fs::remove_all(platform::toPath(handoff::editorFile()).parent_path());
    const auto error = answerMessageBox(QMessageBox::Ok);
    run("mnuOpen_in_Editor");
    EXPECT_TRUE(error->text.contains(handoff::editorFile())) << error->text.toStdString();
    EXPECT_TRUE(error->text.contains(u"No such file"_s));
    EXPECT_FALSE(editor.hasStarted());
}
