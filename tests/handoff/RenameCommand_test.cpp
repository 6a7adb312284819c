// SPDX-License-Identifier: GPL-3.0-or-later
// The command "Rename selected file" of the main window.
#include "tests/handoff/MainWindow.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using namespace support;
using namespace test;
using testing::ElementsAre;

namespace {

class RenameCommand : public MainWindow {
  protected:
    struct Seen {
        std::shared_ptr<const SeenBox> question;
        std::shared_ptr<const SeenInput> input;
        std::shared_ptr<const SeenBox> note;
    };
    /// Announces one whole renaming up to the note of the two paths.
    Seen expectRenaming(const QString& name) {
        return {answerMessageBox(QMessageBox::Yes), answerInputBox(name),
                answerMessageBox(QMessageBox::Ok)};
    }
    void run() {
        chooseFromMenu(window, "Button1", "mnuRename");
        ASSERT_TRUE(allAnswered());
    }
    void openList(const std::string& bytes) {
        writeFile(folder / "list.m3u", bytes);
        open({u"list.m3u"_s});
    }
    std::string absoluteList() const {
        return "#EXTM3U\n" + utf8(u"music/one.mp3"_s) + "\n" + utf8(u"music/two.mp3"_s) + "\n" +
               utf8(u"music/three.wav"_s) + "\n";
    }
};

}  // namespace

TEST_F(RenameCommand, WithoutASelectionNothingHappens) {
    openThree();
    select({});
    run();
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("one.mp3", "three.wav", "two.mp3"));
}

TEST_F(RenameCommand, NoAndAnEmptyNameGoOnWithTheNextRow) {
    openThree();
    select({1, 2, 3});
    const auto first = answerMessageBox(QMessageBox::No);
    const auto second = answerMessageBox(QMessageBox::Yes);
    answerInputBox({});
    const auto third = answerMessageBox(QMessageBox::Yes);
    const auto input = cancelInputBox();
    run();
    EXPECT_EQ(first->text, u"Would you like to rename this selected file: \r\n"_s +
                               at(u"music/one.mp3"_s) +
                               u"\r\nthen automatically update the loaded playlist?  "_s);
    EXPECT_EQ(first->title, u"Rename file?"_s);
    EXPECT_EQ(first->buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(first->icon, QMessageBox::Question);
    EXPECT_TRUE(second->text.contains(at(u"music/two.mp3"_s)));
    EXPECT_TRUE(third->text.contains(at(u"music/three.wav"_s)));
    EXPECT_EQ(input->title, u"Rename file..."_s);
    EXPECT_EQ(input->prompt, u"Please input new file name without the extension."_s);
    EXPECT_EQ(input->defaultText, QString());
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("one.mp3", "three.wav", "two.mp3"));
}

TEST_F(RenameCommand, AListWithoutAFileShowsTheTypedName) {
    openThree();
    select({2});
    const Seen seen = expectRenaming(u" Né 音 "_s);
    run();
    EXPECT_EQ(seen.note->text, at(u"music/two.mp3"_s) + u"    "_s + at(u"music/ Né 音 .mp3"_s));
    EXPECT_EQ(seen.note->icon, QMessageBox::NoIcon);
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre(" Né 音 .mp3", "one.mp3", "three.wav"));
    EXPECT_EQ(list().subItem(2, 2), u" Né 音 "_s);
    EXPECT_EQ(entries().value(1), at(u"music/two.mp3"_s));
}

TEST_F(RenameCommand, AListWithAFileIsRevisedAndLoadedAgain) {
    openList(absoluteList());
    select({2});
    expectRenaming(u"new"_s);
    const auto told = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_EQ(
        told->text,
        u"The file has been renamed as: "_s + at(u"music/new.mp3"_s) +
            u" and the playlist revised to reflect this change.\r\n\r\n"_s +
            u"TIP:  if this is an MP3 file it is also advisable to edit the 'Title' ID tag "_s +
            u"to reflect this new file name then reload the playlist!"_s);
    EXPECT_EQ(told->icon, QMessageBox::NoIcon);
    EXPECT_EQ(readFile(folder / "list.m3u"), "#EXTM3U\r\n" + utf8(u"music/one.mp3"_s) + "\r\n" +
                                                 utf8(u"music/new.mp3"_s) + "\r\n" +
                                                 utf8(u"music/three.wav"_s) + "\r\n");
    EXPECT_EQ(entries(), (QStringList{at(u"music/one.mp3"_s), at(u"music/new.mp3"_s),
                                      at(u"music/three.wav"_s)}));
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("new.mp3", "one.mp3", "three.wav"));
    EXPECT_EQ(caption(), at(u"list.m3u"_s));
}

TEST_F(RenameCommand, EverySelectedRowIsOffered) {
    openList(absoluteList());
    select({1, 3});
    for (const QString& name : {u"first"_s, u"last"_s}) {
        expectRenaming(name);
        answerMessageBox(QMessageBox::Ok);
    }
    run();
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("first.mp3", "last.wav", "two.mp3"));
    EXPECT_EQ(entries(), (QStringList{at(u"music/first.mp3"_s), at(u"music/two.mp3"_s),
                                      at(u"music/last.wav"_s)}));
}

TEST_F(RenameCommand, RelativeLinesStayAndTheEntryGoesMissing) {
    openList("music/one.mp3\nmusic/two.mp3");
    select({1});
    expectRenaming(u"new"_s);
    answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(fs::exists(folder / "music/new.mp3"));
    EXPECT_EQ(readFile(folder / "list.m3u"), "music/one.mp3\r\nmusic/two.mp3\r\n");
    EXPECT_EQ(entries().value(0), at(u"music/one.mp3"_s));
}

TEST_F(RenameCommand, TheExtensionIsTheLastFourCharacters) {
    writeFile(folder / "music/LOUD.MP3", "sound");
    writeFile(folder / "music/song.mpga", "sound");
    open({u"music/LOUD.MP3"_s, u"music/song.mpga"_s});
    select({1, 2});
    expectRenaming(u"quiet"_s);
    expectRenaming(u"tune."_s);
    run();
    EXPECT_THAT(namesIn(folder / "music"),
                ElementsAre("one.mp3", "quiet.MP3", "three.wav", "tune.mpga", "two.mp3"));
    EXPECT_EQ(list().subItem(2, 2), u"tune."_s);
}

TEST_F(RenameCommand, AFileOfThatNameIsNeverReplaced) {
    openList(absoluteList());
    const std::string before = readFile(folder / "list.m3u");
    select({1, 3});
    expectRenaming(u"two"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(at(u"music/one.mp3"_s))) << error->text.toStdString();
    EXPECT_TRUE(error->text.contains(at(u"music/two.mp3"_s)));
    EXPECT_TRUE(error->text.contains(u"exists"_s));
    EXPECT_EQ(readFile(folder / "music/one.mp3"), "sound of one.mp3");
    EXPECT_EQ(readFile(folder / "music/two.mp3"), "sound of two.mp3");
    EXPECT_EQ(readFile(folder / "list.m3u"), before);
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("one.mp3", "three.wav", "two.mp3"));
}

TEST_F(RenameCommand, ANameThatCannotBeIsTold) {
    openThree();
    select({1});
    expectRenaming(u"no/such/folder"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(at(u"music/no/such/folder.mp3"_s)));
    EXPECT_TRUE(fs::exists(folder / "music/one.mp3"));
    EXPECT_NE(list().subItem(1, 2), u"no/such/folder"_s);
}

TEST_F(RenameCommand, AFileThatIsGoneIsTold) {
    openThree();
    fs::remove(folder / "music/one.mp3");
    select({1});
    expectRenaming(u"new"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(at(u"music/one.mp3"_s)));
    EXPECT_TRUE(error->text.contains(u"No such file"_s));
}

// After a save the caption is no path: the file is renamed, the list cannot be found.
TEST_F(RenameCommand, AfterASaveTheListIsNotFound) {
    openThree();
    support::find<QLabel>(window, "Label7").setText(u"Playlist loaded: "_s + at(u"list.m3u"_s));
    select({1});
    expectRenaming(u"new"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(u"Playlist loaded: "_s + at(u"list.m3u"_s)));
    EXPECT_TRUE(error->text.contains(u"No such file"_s));
    EXPECT_TRUE(fs::exists(folder / "music/new.mp3"));
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("new.mp3", "three.wav", "two.mp3"));
    EXPECT_EQ(entries().value(0), at(u"music/one.mp3"_s));
}

TEST_F(RenameCommand, TheListMayLieOnAnotherFileSystem) {
    const FolderElsewhere elsewhere(folder.path());
    const QString listPath = platform::toQString(elsewhere.path() / "list.m3u");
    writeFile(elsewhere.path() / "list.m3u", absoluteList());
    openPaths({listPath});
    select({1});
    expectRenaming(u"new"_s);
    answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("list.m3u"));
    EXPECT_THAT(namesIn(folder / "music"), ElementsAre("new.mp3", "three.wav", "two.mp3"));
    EXPECT_EQ(entries().value(0), at(u"music/new.mp3"_s));
}

TEST_F(RenameCommand, AListBehindALinkStaysThereWithItsMode) {
    writeFile(folder / "real.m3u", absoluteList());
    fs::permissions(folder / "real.m3u", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real.m3u", folder / "list.m3u");
    openPaths({at(u"list.m3u"_s)});
    select({1});
    expectRenaming(u"new"_s);
    answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(fs::is_symlink(folder / "list.m3u"));
    EXPECT_EQ(fs::status(folder / "real.m3u").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(readFile(folder / "real.m3u").find("one.mp3"), std::string::npos);
    EXPECT_EQ(entries().value(0), at(u"music/new.mp3"_s));
}

// The list is revised through mytemp.dat beside the file; that must not be the list itself, nor
// the file that was just renamed.
TEST_F(RenameCommand, TheScratchFileNeverEatsTheList) {
    openList(absoluteList());
    fs::create_hard_link(folder / "list.m3u", folder / "music/mytemp.dat");
    select({1});
    expectRenaming(u"new"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(u"list.m3u"_s));
    EXPECT_EQ(readFile(folder / "list.m3u"), absoluteList());
}

TEST_F(RenameCommand, TheScratchFileNeverEatsTheRenamedFile) {
    writeFile(folder / "music/song.dat", "sound");
    openList(utf8(u"music/song.dat"_s) + "\n");
    select({1});
    expectRenaming(u"mytemp"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(u"mytemp.dat"_s));
    EXPECT_EQ(readFile(folder / "music/mytemp.dat"), "sound");
    EXPECT_EQ(readFile(folder / "list.m3u"), utf8(u"music/song.dat"_s) + "\n");
}

// A list of another narrow encoding is revised in that encoding, and its other lines stay.
TEST_F(RenameCommand, AListInWindows1251IsRevised) {
    writeFile(folder / "music/Песня.mp3", "sound");
    const std::string music = utf8(u"music/"_s);
    openList(music + "\xCF\xE5\xF1\xED\xFF.mp3\n" + music + "one.mp3\n");
    ASSERT_EQ(entries().value(0), at(u"music/Песня.mp3"_s));
    select({1});
    expectRenaming(u"Имя"_s);
    answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_EQ(readFile(folder / "list.m3u"),
              music + "\xC8\xEC\xFF.mp3\r\n" + music + "one.mp3\r\n");
    EXPECT_EQ(entries().value(0), at(u"music/Имя.mp3"_s));
}

TEST_F(RenameCommand, ANameThatTheListCannotHoldIsRefusedBeforeTheFileIsRenamed) {
    writeFile(folder / "music/Песня.mp3", "sound");
    const std::string line = utf8(u"music/"_s) + "\xCF\xE5\xF1\xED\xFF.mp3\n";
    openList(line);
    select({1});
    expectRenaming(u"音"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(u"音"_s)) << error->text.toStdString();
    EXPECT_TRUE(fs::exists(folder / "music/Песня.mp3"));
    EXPECT_EQ(readFile(folder / "list.m3u"), line);
}

TEST_F(RenameCommand, AnErrorAfterTheRenamingSaysWhatHasTheNewName) {
    openThree();
    support::find<QLabel>(window, "Label7").setText(at(u"gone.m3u"_s));
    select({1});
    expectRenaming(u"new"_s);
    const auto error = answerMessageBox(QMessageBox::Ok);
    run();
    EXPECT_TRUE(error->text.contains(at(u"music/one.mp3"_s) + u"” was renamed to “"_s +
                                     at(u"music/new.mp3"_s)))
        << error->text.toStdString();
}
