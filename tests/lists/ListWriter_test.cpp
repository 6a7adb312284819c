// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/ListWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include "platform/Error.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using lists::ListedEntry;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

TEST(ListWriter, M3uIsOnePathALineAndNothingElse) {
    EXPECT_EQ(lists::writeM3u({{u"/music/Zoë.mp3"_s, u"Title"_s, 1000}, {u"/b c.wav"_s, {}, -1}}),
              "/music/Zo\xC3\xAB.mp3\r\n/b c.wav\r\n");
    EXPECT_EQ(lists::writeM3u({}), "");
}

TEST(ListWriter, PlsHasTitlesLengthsAndAnExactCount) {
    EXPECT_EQ(lists::writePls({{u"/a.mp3"_s, u"First\nsong"_s, 185400}, {u"/x/b.wav"_s, {}, -1}}),
              "[playlist]\r\nFile1=/a.mp3\r\nTitle1=First song\r\nLength1=185\r\n"
              "File2=/x/b.wav\r\nTitle2=b.wav\r\nLength2=-1\r\nNumberOfEntries=2\r\nVersion=2\r\n");
}

TEST(ListWriter, RefusesAPathThatNoLineHolds) {
    const std::vector<ListedEntry> broken{{u"/a\nb.mp3"_s, {}, -1}};
    EXPECT_THROW(lists::writeM3u(broken), platform::Error);
    EXPECT_THROW(lists::writePls(broken), platform::Error);
    EXPECT_THROW(lists::writeM3u({{u"/a"_s + QChar(0xD800), {}, -1}}), platform::Error);
}

TEST(ListWriter, KeepsTheLinkAndReplacesTheFileBehindIt) {
    const support::TempFolder folder;
    QFile real(folder.file(u"real.m3u"_s));
    ASSERT_TRUE(real.open(QIODevice::WriteOnly));
    real.write("old");
    real.close();
    ASSERT_TRUE(QFile::link(folder.file(u"real.m3u"_s), folder.file(u"link.m3u"_s)));
    lists::replaceListFile(folder.file(u"link.m3u"_s), "new");
    EXPECT_TRUE(QFileInfo(folder.file(u"link.m3u"_s)).isSymLink());
    EXPECT_EQ(contentOf(folder.file(u"real.m3u"_s)), "new");
    EXPECT_EQ(QDir(folder.file(QString())).entryList(QDir::Files).size(), 2);
}

TEST(ListWriter, AFailureNamesTheFileAndLeavesNothingBehind) {
    const support::TempFolder folder;
    const QString target = folder.file(u"none/list.m3u"_s);
    try {
        lists::replaceListFile(target, "x");
        FAIL();
    } catch (const platform::Error& error) {
        EXPECT_TRUE(QString::fromUtf8(error.what()).contains(target));
    }
    // A folder of the target's name cannot be replaced by a file.
    ASSERT_TRUE(QDir().mkpath(folder.file(u"taken.m3u"_s)));
    EXPECT_THROW(lists::replaceListFile(folder.file(u"taken.m3u"_s), "x"), platform::Error);
    EXPECT_EQ(QDir(folder.file(QString())).entryList(QDir::Files | QDir::Hidden).size(), 0);
}

}  // namespace
