// SPDX-License-Identifier: GPL-3.0-or-later
// The commands copy and convert-list, as a shell runs them.
#include <QFileInfo>
#include <gmock/gmock.h>

#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

namespace fs = std::filesystem;
using namespace Qt::Literals::StringLiterals;
using support::Outcome;
using test::namesIn;
using test::readFile;
using test::writeFile;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Lists : public testing::Test {
  protected:
    Lists() {
        fs::create_directories(folder / "music");
        fs::create_directories(folder / "out");
        writeFile(folder / "music/a.mp3", "first");
        writeFile(folder / "music/été – 音.mp3", "second");
        writeFile(folder / "list.m3u", "music/a.mp3\r\nmusic/été – 音.mp3\r\n");
    }

    Outcome cli(const QStringList& arguments) const {
        return support::run(QStringLiteral(TRACKSMITH_CLI), arguments);
    }
    QString at(const QString& name) const { return folder.file(name); }
    std::string utf8(const QString& name) const { return at(name).toStdString(); }

    support::TempFolder folder;
};

}  // namespace

TEST_F(Lists, CopyWritesTheFilesAndTheirList) {
    const Outcome outcome = cli({u"copy"_s, at(u"list.m3u"_s), u"--to"_s, at(u"out"_s)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("2 files done."));
    EXPECT_THAT(namesIn(folder / "out"), ElementsAre("a.mp3", "temp.m3u", "été – 音.mp3"));
    EXPECT_EQ(readFile(folder / "out/été – 音.mp3"), "second");
    EXPECT_EQ(readFile(folder / "out/temp.m3u"), "a.mp3\r\nété – 音.mp3\r\n");
}

TEST_F(Lists, CopyForAPlayerPutsFolderAndNameTogether) {
    EXPECT_EQ(cli({u"copy"_s, at(u"list.m3u"_s), u"--player"_s, u"--to"_s, at(u"out"_s)}).exitCode,
              0);
    EXPECT_THAT(namesIn(folder.path()),
                ElementsAre("list.m3u", "music", "out", "outa.mp3", "outété – 音.mp3"));
    EXPECT_EQ(cli({u"copy"_s, at(u"list.m3u"_s), u"--player"_s, u"--to"_s, at(u"out/"_s)}).exitCode,
              0);
    EXPECT_THAT(namesIn(folder / "out"), ElementsAre("a.mp3", "été – 音.mp3"));
}

TEST_F(Lists, CopyEndsAtTheFirstFailure) {
    writeFile(folder / "list.m3u", "music/a.mp3\nmusic/gone.mp3\nmusic/été – 音.mp3\n");
    const Outcome outcome = cli({u"copy"_s, at(u"list.m3u"_s), u"--to"_s, at(u"out"_s)});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("gone.mp3"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("No such file"));
    EXPECT_THAT(namesIn(folder / "out"), ElementsAre("a.mp3", "temp.m3u"));
    EXPECT_EQ(readFile(folder / "out/temp.m3u"), "a.mp3\r\n");
}

TEST_F(Lists, AListThatWasThereGivesWayOnlyToAWholeOne) {
    writeFile(folder / "out/temp.m3u", "old.mp3\r\n");
    writeFile(folder / "short.m3u", "music/a.mp3\nmusic/gone.mp3\n");
    EXPECT_EQ(cli({u"copy"_s, at(u"short.m3u"_s), u"--to"_s, at(u"out"_s)}).exitCode, 1);
    EXPECT_EQ(readFile(folder / "out/temp.m3u"), "old.mp3\r\n");
    EXPECT_EQ(cli({u"copy"_s, at(u"list.m3u"_s), u"--to"_s, at(u"out"_s)}).exitCode, 0);
    EXPECT_EQ(readFile(folder / "out/temp.m3u"), "a.mp3\r\nété – 音.mp3\r\n");
}

TEST_F(Lists, CopyOntoTheFilesThemselvesLeavesThem) {
    const Outcome outcome = cli({u"copy"_s, at(u"list.m3u"_s), u"--to"_s, at(u"music"_s)});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("both are the same file"));
    EXPECT_EQ(readFile(folder / "music/a.mp3"), "first");
}

TEST_F(Lists, CopyDoesNotWriteOverTheListItReads) {
    writeFile(folder / "music/temp.m3u", "a.mp3\r\n");
    fs::create_directory_symlink(folder / "music", folder / "linked");
    for (const QString& target : {at(u"music"_s), at(u"linked"_s)}) {
        const Outcome outcome = cli({u"copy"_s, at(u"music/temp.m3u"_s), u"--to"_s, target});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("temp.m3u\" cannot be copied"));
        EXPECT_EQ(readFile(folder / "music/temp.m3u"), "a.mp3\r\n");
    }
}

TEST_F(Lists, CopySpeaksJson) {
    const Outcome outcome =
        cli({u"copy"_s, at(u"list.m3u"_s), u"--to"_s, at(u"out"_s), u"--json"_s});
    EXPECT_THAT(outcome.out.toStdString(),
                HasSubstr("\"output\":\"" + utf8(u"out/a.mp3"_s) + "\",\"status\":\"done\""));
}

TEST_F(Lists, BadUsageIsTold) {
    EXPECT_EQ(cli({u"copy"_s, at(u"list.m3u"_s)}).exitCode, 2);
    EXPECT_EQ(cli({u"copy"_s, at(u"list.m3u"_s), u"--to"_s, at(u"none"_s)}).exitCode, 2);
    EXPECT_EQ(cli({u"convert-list"_s, at(u"list.m3u"_s)}).exitCode, 2);
    const Outcome outcome = cli({u"convert-list"_s, at(u"list.m3u"_s), at(u"list.txt"_s)});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("list.txt"));
    EXPECT_FALSE(fs::exists(folder / "list.txt"));
}

TEST_F(Lists, ConvertsToPlsAndBack) {
    support::scratchCopy("tone.mp3", folder / "music", "tone.mp3");
    writeFile(folder / "list.m3u", "music/tone.mp3\nhttp://example.org/x\nmusic/gone.mp3\n");
    ASSERT_EQ(cli({u"convert-list"_s, at(u"list.m3u"_s), at(u"list.PLS"_s)}).exitCode, 0);
    const std::string pls = readFile(folder / "list.PLS");
    EXPECT_THAT(pls, HasSubstr("[playlist]\r\n"));
    EXPECT_THAT(pls, HasSubstr("File1=" + utf8(u"music/tone.mp3"_s) + "\r\n"));
    EXPECT_THAT(pls, testing::ContainsRegex("Length1=[1-9]"));
    EXPECT_THAT(pls, HasSubstr("File2=http://example.org/x\r\n"));
    EXPECT_THAT(pls, HasSubstr("Length3=-1\r\n"));
    EXPECT_THAT(pls, HasSubstr("NumberOfEntries=3\r\n"));

    ASSERT_EQ(cli({u"convert-list"_s, at(u"list.PLS"_s), at(u"back.m3u8"_s)}).exitCode, 0);
    EXPECT_EQ(readFile(folder / "back.m3u8"), utf8(u"music/tone.mp3"_s) +
                                                  "\r\nhttp://example.org/x\r\n" +
                                                  utf8(u"music/gone.mp3"_s) + "\r\n");
}

TEST_F(Lists, WhatIsNoPlaylistIsRefusedByName) {
    writeFile(folder / "sound.m3u", std::string("RIFF\0\0\0\0", 8));
    const Outcome outcome = cli({u"convert-list"_s, at(u"sound.m3u"_s), at(u"new.pls"_s)});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("sound.m3u"));
    EXPECT_FALSE(fs::exists(folder / "new.pls"));
}
