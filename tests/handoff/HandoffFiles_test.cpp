// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/HandoffFiles.h"

#include <gmock/gmock.h>

#include "handoff/CopyFiles.h"
#include "lists/ListWriter.h"
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

TEST(WriteLines, ErrorsNameTheFileAndTheReason) {
    const support::TempFolder folder;
    EXPECT_THAT(errorOf([&] { lists::writeLines(folder.file(u"none/list"_s), {}); }),
                testing::AllOf(HasSubstr("none/list"), HasSubstr("No such file")));
}

// A line never becomes another one, and a list that cannot be written leaves the one before.
TEST(WriteLines, IsWholeOrNotAtAll) {
    const support::TempFolder folder;
    const QString list = folder.file(u"list"_s);
    lists::writeLines(list, {u"one"_s});
    EXPECT_THAT(errorOf([&] {
                    lists::writeLines(list, {u"two"_s, u"a"_s + QChar(0xDC00)});
                }),
                HasSubstr("list"));
    EXPECT_THAT(errorOf([&] { lists::writeLines(list, {u"three\nlines"_s}); }), HasSubstr("three"));
    {
        const test::FileSizeLimit full(4);
        EXPECT_THAT(errorOf([&] { lists::writeLines(list, {u"too long"_s}); }), HasSubstr("list"));
    }
    EXPECT_EQ(readFile(folder / "list"), "one\r\n");
    EXPECT_THAT(test::namesIn(folder.path()), testing::ElementsAre("list"));
}

TEST(ProjectList, ANameNeverReadsAsAComment) {
    EXPECT_EQ(handoff::projectListLine(u"a.mp3"_s), u"a.mp3"_s);
    EXPECT_EQ(handoff::projectListLine(u"#1.mp3"_s), u"./#1.mp3"_s);
}
