// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/HandoffFiles.h"

#include <gmock/gmock.h>

#include "handoff/CopyFiles.h"
#include "lists/LineFile.h"
#include "platform/Paths.h"
#include "tests/platform/file/FileTools.h"
#include "tests/support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;
using test::errorOf;
using test::readFile;
using testing::HasSubstr;

TEST(HandoffFiles, LieInTheProgramsOwnDrive) {
    const QString root = platform::fixedPath(u"C:\\"_s);
    EXPECT_EQ(handoff::burnListFile(), root + u"burn_list.dat"_s);
    EXPECT_EQ(handoff::burnFile(), root + u"Zolvo_Temp/burn.dat"_s);
    EXPECT_EQ(handoff::burnDataFile(), root + u"Zolvo_Temp/burndata.dat"_s);
    EXPECT_EQ(handoff::tagFile(), root + u"Zolvo_Temp/tag.dat"_s);
    EXPECT_EQ(handoff::editorFile(), root + u"Zolvo_Temp/editor.dat"_s);
}

TEST(HandoffFiles, TheBurnListIsOnePathPerLine) {
    const std::filesystem::path file = platform::toPath(handoff::burnListFile());
    handoff::writeBurnList({u"/out/a song.wav"_s, u"/out/é – 音.wav"_s, u"/out/#1.wav"_s});
    EXPECT_EQ(readFile(file), "/out/a song.wav\r\n/out/é – 音.wav\r\n/out/#1.wav\r\n");
    handoff::writeBurnList({u"/x.wav"_s});
    EXPECT_EQ(readFile(file), "/x.wav\r\n");
    handoff::writeBurnList({});
    EXPECT_EQ(readFile(file), "");
}

TEST(HandoffFiles, TheWorkingFolderMayExist) {
    handoff::createWorkingFolder();
    handoff::createWorkingFolder();
    EXPECT_TRUE(
        std::filesystem::is_directory(platform::toPath(platform::fixedPath(u"C:\\Zolvo_Temp"_s))));
}

TEST(LineFile, WhatIsWrittenIsThereAtOnce) {
    const support::TempFolder folder;
    lists::LineFile file(folder.file(u"list"_s));
    file.writeLine(u"one"_s);
    EXPECT_EQ(readFile(folder / "list"), "one\r\n");
}

TEST(LineFile, ErrorsNameTheFileAndTheReason) {
    const support::TempFolder folder;
    EXPECT_THAT(errorOf([&] { lists::LineFile file(folder.file(u"none/list"_s)); }),
                testing::AllOf(HasSubstr("none/list"), HasSubstr("No such file")));
    lists::LineFile full(u"/dev/full"_s);
    EXPECT_THAT(errorOf([&] { full.writeLine(u"one"_s); }),
                testing::AllOf(HasSubstr("/dev/full"), HasSubstr("No space")));
}

// A line that cannot be written as it is stays out; it never becomes another one.
TEST(LineFile, TextWithoutAFormIsAnError) {
    const support::TempFolder folder;
    lists::LineFile file(folder.file(u"list"_s));
    EXPECT_THAT(errorOf([&] { file.writeLine(u"a"_s + QChar(0xDC00)); }), HasSubstr("list"));
    EXPECT_THAT(errorOf([&] { file.writeLine(u"two\nlines"_s); }), HasSubstr("two"));
    EXPECT_EQ(readFile(folder / "list"), "");
}

TEST(ProjectList, ANameNeverReadsAsAComment) {
    EXPECT_EQ(handoff::projectListLine(u"a.mp3"_s), u"a.mp3"_s);
    EXPECT_EQ(handoff::projectListLine(u"#1.mp3"_s), u"./#1.mp3"_s);
}
