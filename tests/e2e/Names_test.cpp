// SPDX-License-Identifier: GPL-3.0-or-later
// Names that are no UTF-8 (a byte 0xE9, as old systems wrote é), and names that lead to no regular
// file, in the window.
#include <filesystem>

#include "tests/effects/EffectsWindow.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Irregular.h"
#include "tests/support/Sound.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using namespace support;
using test::readFile;
using test::writeFile;
using testing::HasSubstr;

namespace {

struct Names : EffectsWindow {
    const fs::path file = scratchCopy("tone.wav", folder.path(), "caf\xE9.wav");

    void open(const fs::path& path) { MainWindow::open({platform::toQString(path)}); }

    /// Through a name that every program can be given.
    std::size_t framesOf(const fs::path& path) {
        fs::copy_file(path, folder / "judged.wav", fs::copy_options::overwrite_existing);
        return decodeWithFfmpeg(folder / "judged.wav").frames();
    }
    void saveAndLoad(const QString& list, int filter) {
        answerFileDialog(list, filter);
        press("CommandSave1");
        ASSERT_TRUE(allAnswered());
        press("Button2");
        ASSERT_EQ(this->list().rowCount(), 0);
        answerFileDialog(list);
        press("CommandLoad1");
        ASSERT_TRUE(allAnswered());
        ASSERT_TRUE(waitForDisk(*window));
    }
    fs::path entry(std::int16_t index) {
        return platform::toPath(engine().PlaylistGetItemInfo(0, index, player::ItemInfoPath));
    }
};

}  // namespace

TEST_F(Names, ArePlayedAndChanged) {
    open(file);
    ASSERT_EQ(list().rowCount(), 1);
    EXPECT_TRUE(waitFor([&] { return list().subItem(1, 1) == u"0:02"_s; }));
    press("CommandPlay1");
    EXPECT_TRUE(waitFor([&] { return engine().LengthMs(0) == 2000; }));
    EXPECT_EQ(engine().GetPlayerStatus(0), player::StatusPlaying);
    press("CommandStop1");
    const std::size_t before = framesOf(file);
    select({1});
    choose("mnuSilence2Frt");
    apply(dialog("frmEffects"));
    EXPECT_GT(framesOf(file), before);
}

TEST_F(Names, AreInSavedListsAndLoadAgain) {
    open(file);
    for (const QString& name : {u"kept.m3u"_s, u"kept.pls"_s}) {
        saveAndLoad(folder.file(name), name.endsWith(u"pls"_s) ? 2 : 1);
        ASSERT_EQ(list().rowCount(), 1);
        EXPECT_EQ(entry(0), file);
    }
    EXPECT_EQ(readFile(folder / "kept.m3u"), file.string() + "\r\n");
}

TEST_F(Names, AreCopied) {
    fs::create_directory(folder / "target");
    open(file);
    answerFileDialog(folder.file(u"target"_s));
    answerMessageBox(QMessageBox::Ok);
    chooseFromMenu(*window, "Button1", "mnu_copy2folder");
    ASSERT_TRUE(allAnswered());
    ASSERT_TRUE(waitForDisk(*window));
    EXPECT_EQ(readFile(folder / "target/caf\xE9.wav"), readFile(file));
    ASSERT_EQ(list().rowCount(), 1);
    EXPECT_EQ(entry(0), folder / "target/caf\xE9.wav");
}

TEST_F(Names, AreRenamedAndStayWhereOthersAre) {
    const fs::path other = scratchCopy("tone.wav", folder.path(), "\xE9t\xE9.wav");
    writeFile(folder / "list.m3u", file.string() + "\r\n" + other.string() + "\r\n");
    open(folder / "list.m3u");
    select({1});
    answerMessageBox(QMessageBox::Yes);
    answerInputBox(u"new"_s);
    answerMessageBox(QMessageBox::Ok);
    answerMessageBox(QMessageBox::Ok);
    chooseFromMenu(*window, "Button1", "mnuRename");
    ASSERT_TRUE(allAnswered());
    ASSERT_TRUE(waitForDisk(*window));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(readFile(folder / "list.m3u"),
              (folder / "new.wav").string() + "\r\n" + other.string() + "\r\n");
    EXPECT_EQ(entry(0), folder / "new.wav");
    EXPECT_EQ(entry(1), other);
}

TEST_F(Names, OfPipesAndDevicesAreListedAndNeverOpened) {
    std::string lines;
    const auto all = makeIrregular(folder.path(), ".mp3");
    for (const fs::path& one : all) lines += one.string() + "\r\n";
    writeFile(folder / "list.m3u", lines);
    open(folder / "list.m3u");
    ASSERT_EQ(list().rowCount(), static_cast<int>(all.size()));
    press("CommandPlay1");
    EXPECT_TRUE(waitFor([&] { return engine().GetPlayerStatus(0) == player::StatusStopped; }));
    press("CommandStop1");
    select({1, 2, 3, 4});
    choose("mnuSilence2Frt");
    apply(dialog("frmEffects"));
    for (int row = 0; row < list().rowCount(); ++row) {
        const QString tip = list().model()->index(row, 0).data(Qt::ToolTipRole).toString();
        EXPECT_THAT(tip.toStdString(), HasSubstr("not a regular file"));
    }
}

TEST_F(Names, OfPipesAndDevicesAreRefusedWhenDropped) {
    QStringList paths;
    for (const fs::path& one : makeIrregular(folder.path(), ".mp3"))
        paths += platform::toQString(one);
    const auto seen = answerMessageBox(QMessageBox::Ok);
    window->openPaths(paths);
    ASSERT_TRUE(allAnswered());
    EXPECT_EQ(list().rowCount(), 0);
    for (const char* name : {"pipe.mp3", "device.mp3", "socket.mp3"})
        EXPECT_THAT(seen->text.toStdString(), HasSubstr(name));
    EXPECT_EQ(seen->text.count(u"not a regular file"_s), 3);
}

TEST_F(Names, OfPipesAndDevicesAreNoLists) {
    for (const fs::path& one : makeIrregular(folder.path(), ".m3u")) {
        if (fs::is_directory(one)) continue;  // the dialog opens it
        answerFileDialog(platform::toQString(one));
        const auto seen = answerMessageBox(QMessageBox::Ok);
        press("CommandLoad1");
        ASSERT_TRUE(allAnswered()) << one;
        EXPECT_EQ(seen->text, u"Error loading playlist"_s);
    }
}
