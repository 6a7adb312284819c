// SPDX-License-Identifier: GPL-3.0-or-later
// The two copy commands of the main window.
#include <QTimer>

#include "tests/handoff/MainWindow.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using namespace support;
using namespace test;
using testing::ElementsAre;

namespace {

const QString samePath = u"ERROR: most likely you are trying to copy file(s) to the same path."_s;

class CopyCommands : public MainWindow {
  protected:
    CopyCommands() { fs::create_directory(folder / "target"); }
    /// Runs a command, picks the folder, and answers with the one box that must follow.
    void copy(const char* item, const QString& target, const QString& message) {
        const auto dialog = answerFileDialog(target);
        const auto box = answerMessageBox(QMessageBox::Ok);
        chooseFromMenu(window, "Button1", item);
        ASSERT_TRUE(allAnswered());
        EXPECT_EQ(box->text, message);
        EXPECT_EQ(box->buttons, QMessageBox::Ok);
        EXPECT_EQ(box->icon, QMessageBox::NoIcon);
        prompt = dialog->title;
    }
    void copyToProject(const QString& target, const QString& message) {
        copy("mnu_copy2folder", target, message);
        EXPECT_EQ(prompt, u"Select target folder for project..."_s);
    }
    void copyToPlayer(const QString& target, const QString& message) {
        copy("mnu2MP3Player", target, message);
        EXPECT_EQ(prompt, u"Select target folder for file transfer..."_s);
    }

    const QString projectDone =
        u"Playlist files have been copied to the target folder: play-list created and reloaded."_s;
    const QString playerDone = u"Playlist files have been copied to the target."_s;
    QString prompt;
};

}  // namespace

TEST_F(CopyCommands, ProjectCopiesAllAndReloadsFromTheCopies) {
    openThree();
    select({2});
    copyToProject(at(u"target"_s), projectDone);
    EXPECT_THAT(namesIn(folder / "target"),
                ElementsAre("one.mp3", "temp.m3u", "three.wav", "two.mp3"));
    EXPECT_EQ(readFile(folder / "target/temp.m3u"), "one.mp3\r\ntwo.mp3\r\nthree.wav\r\n");
    EXPECT_EQ(readFile(folder / "target/two.mp3"), "sound of two.mp3");
    EXPECT_EQ(fs::last_write_time(folder / "target/two.mp3"),
              fs::last_write_time(folder / "music/two.mp3"));
    EXPECT_EQ(entries(), (QStringList{at(u"target/one.mp3"_s), at(u"target/two.mp3"_s),
                                      at(u"target/three.wav"_s)}));
    EXPECT_EQ(list().rowCount(), 3);
    EXPECT_EQ(caption(), at(u"target/temp.m3u"_s));
    EXPECT_FALSE(bar().isVisible());
    EXPECT_EQ(bar().maximum(), 2);
    EXPECT_EQ(bar().value(), 2);
}

TEST_F(CopyCommands, CancellingThePickerDoesNothing) {
    openThree();
    for (const char* item : {"mnu_copy2folder", "mnu2MP3Player"}) {
        const auto dialog = cancelFileDialog();
        chooseFromMenu(window, "Button1", item);
        ASSERT_TRUE(allAnswered());
    }
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("music", "target"));
    EXPECT_FALSE(bar().isVisible());
    EXPECT_EQ(list().rowCount(), 3);
}

TEST_F(CopyCommands, AnEmptyPlaylistIsCopiedAsOne) {
    copyToProject(at(u"target"_s), projectDone);
    EXPECT_THAT(namesIn(folder / "target"), ElementsAre("temp.m3u"));
    EXPECT_EQ(readFile(folder / "target/temp.m3u"), "");
    EXPECT_EQ(list().rowCount(), 0);
    EXPECT_EQ(caption(), at(u"target/temp.m3u"_s));
    EXPECT_FALSE(bar().isVisible());
    copyToPlayer(at(u"target"_s), playerDone);
}

TEST_F(CopyCommands, CopyingOntoTheFilesThemselvesIsTold) {
    openThree();
    copyToProject(at(u"music"_s), samePath);
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(readFile(folder / "music/temp.m3u"), "");
    EXPECT_EQ(readFile(folder / "music/one.mp3"), "sound of one.mp3");
    EXPECT_EQ(entries().value(0), at(u"music/one.mp3"_s));
    EXPECT_NE(caption(), at(u"music/temp.m3u"_s));
}

// The list that is loaded may be the one that a copy would write.
TEST_F(CopyCommands, AListThatWasThereSurvivesACopyThatFails) {
    writeFile(folder / "music/temp.m3u", "one.mp3\r\ntwo.mp3\r\n");
    open({u"music/temp.m3u"_s});
    copyToProject(at(u"music"_s), samePath);
    EXPECT_EQ(readFile(folder / "music/temp.m3u"), "one.mp3\r\ntwo.mp3\r\n");
    EXPECT_EQ(list().rowCount(), 2);
    writeFile(folder / "target/temp.m3u", "old.mp3\r\n");
    copyToProject(at(u"target"_s), projectDone);
    EXPECT_EQ(readFile(folder / "target/temp.m3u"), "one.mp3\r\ntwo.mp3\r\n");
}

TEST_F(CopyCommands, CopyingOntoTheFilesThroughALinkIsTold) {
    fs::create_directory_symlink(folder / "music", folder / "again");
    openThree();
    copyToProject(at(u"again"_s), samePath);
    EXPECT_EQ(readFile(folder / "music/one.mp3"), "sound of one.mp3");
}

TEST_F(CopyCommands, OfTwoFilesOfOneNameTheSecondStays) {
    fs::create_directory(folder / "other");
    writeFile(folder / "other/one.mp3", "another sound");
    open({u"music/one.mp3"_s, u"other/one.mp3"_s});
    copyToProject(at(u"target"_s), projectDone);
    EXPECT_EQ(readFile(folder / "target/one.mp3"), "another sound");
    EXPECT_EQ(readFile(folder / "target/temp.m3u"), "one.mp3\r\none.mp3\r\n");
    EXPECT_EQ(list().rowCount(), 2);
}

TEST_F(CopyCommands, ThePlayersFolderIsAPrefix) {
    openThree();
    const QStringList before = entries();
    copyToPlayer(at(u"target"_s), playerDone);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("music", "target", "targetone.mp3",
                                                    "targetthree.wav", "targettwo.mp3"));
    EXPECT_EQ(readFile(folder / "targettwo.mp3"), "sound of two.mp3");
    EXPECT_THAT(namesIn(folder / "target"), ElementsAre());
    EXPECT_EQ(entries(), before);
    EXPECT_FALSE(bar().isVisible());
}

TEST_F(CopyCommands, AMissingSourceEndsItAndWhatIsCopiedStays) {
    openThree();
    fs::remove(folder / "music/two.mp3");
    copyToProject(at(u"target"_s), samePath);
    EXPECT_THAT(namesIn(folder / "target"), ElementsAre("one.mp3", "temp.m3u"));
    EXPECT_EQ(readFile(folder / "target/temp.m3u"), "one.mp3\r\n");
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(entries().value(2), at(u"music/three.wav"_s));
    EXPECT_EQ(list().rowCount(), 3);
}

TEST_F(CopyCommands, AFullTargetLeavesNoPartOfAFile) {
    writeFile(folder / "music/two.mp3", noise(200'000));
    writeFile(folder / "target/two.mp3", "an older file");
    openThree();
    {
        const FileSizeLimit full(100'000);
        copyToProject(at(u"target"_s), samePath);
    }
    EXPECT_THAT(namesIn(folder / "target"), ElementsAre("one.mp3", "temp.m3u", "two.mp3"));
    EXPECT_EQ(readFile(folder / "target/two.mp3"), "an older file");
}

TEST_F(CopyCommands, ANameTheTargetCannotHoldIsTold) {
    const QString longName(200, u'n');
    fs::create_directory(folder / longName.toStdString());
    writeFile(folder / "music" / (longName.toStdString() + ".mp3"), "sound");
    open({u"music/"_s + longName + u".mp3"_s});
    copyToPlayer(at(longName), samePath);
    EXPECT_THAT(namesIn(folder.path()), testing::SizeIs(3));
}

TEST_F(CopyCommands, ATargetThatCannotBeWrittenIsTold) {
    fs::create_directory(folder / "target/temp.m3u");
    openThree();
    copyToProject(at(u"target"_s), samePath);
    EXPECT_THAT(namesIn(folder / "target"), ElementsAre("temp.m3u"));
}

// In a list a line that begins with this sign is a remark.
TEST_F(CopyCommands, OddNamesComeBackFromTheList) {
    const QStringList names{u"#1 hit.mp3"_s, u"été – 音楽.mp3"_s, u"100% \"x\" & y.mp3"_s};
    QStringList copies;
    for (const QString& name : names) {
        writeFile(folder / "music" / name.toStdString(), name.toStdString());
        copies += at(u"target/"_s + name);
    }
    open({u"music/"_s + names[0], u"music/"_s + names[1], u"music/"_s + names[2]});
    copyToProject(at(u"target"_s), projectDone);
    EXPECT_EQ(entries(), copies);
}

// While one large file is on its way, the window goes on handling its events.
TEST_F(CopyCommands, TheWindowLivesDuringALongCopy) {
    writeFile(folder / "music/long.mp3", noise(1));
    fs::resize_file(folder / "music/long.mp3", 256'000'000);
    open({u"music/long.mp3"_s, u"music/two.mp3"_s});
    const FolderElsewhere elsewhere(folder.path());
    int seen = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        for (const std::string& name : namesIn(elsewhere.path())) {
            if (name.find(".part") != std::string::npos) ++seen;
        }
    });
    watch.start(1);
    copyToProject(platform::toQString(elsewhere.path()), projectDone);
    EXPECT_GT(seen, 3);
    EXPECT_EQ(fs::file_size(elsewhere.path() / "long.mp3"), 256'000'000U);
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("long.mp3", "temp.m3u", "two.mp3"));
}

// The file in hand is completed; nothing follows it, and nobody is told anything any more.
TEST_F(CopyCommands, ClosingTheWindowEndsTheCopyWithTheFileInHand) {
    writeFile(folder / "music/long.mp3", noise(1));
    fs::resize_file(folder / "music/long.mp3", 256'000'000);
    open({u"music/long.mp3"_s, u"music/two.mp3"_s});
    const FolderElsewhere elsewhere(folder.path());
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (namesIn(elsewhere.path()).size() < 2) return;
        watch.stop();
        window.close();
    });
    watch.start(1);
    answerFileDialog(platform::toQString(elsewhere.path()));
    const auto question = answerMessageBox(QMessageBox::No);
    chooseFromMenu(window, "Button1", "mnu_copy2folder");
    ASSERT_TRUE(allAnswered());
    EXPECT_EQ(question->title, u"Save playlist?"_s);
    EXPECT_THAT(namesIn(elsewhere.path()), ElementsAre("long.mp3", "temp.m3u"));
    EXPECT_EQ(fs::file_size(elsewhere.path() / "long.mp3"), 256'000'000U);
    EXPECT_EQ(entries().value(1), at(u"music/two.mp3"_s));
}
