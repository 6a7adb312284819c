// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/ListReader.h"

#include <cstdio>
#include <filesystem>

#include <QFile>
#include <QSet>
#include <QStringEncoder>
#include <gtest/gtest.h>

#include "platform/Error.h"
#include "tests/support/CpuClock.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Reads bytes as a list in /lists, on a disk that holds just these files.
class ListReader : public ::testing::Test {
  protected:
    QStringList paths(const QByteArray& bytes) {
        QStringList result;
        for (const auto& entry : lists::readList(bytes, u"/lists"_s, exists()))
            result.append(entry.path);
        return result;
    }
    lists::FileExists exists() {
        return [this](const QString& path) { return files.contains(path); };
    }
    void expectRefused(const QByteArray& bytes) {
        EXPECT_THROW(lists::readList(bytes, u"/lists"_s, exists()), platform::Error)
            << bytes.toStdString();
    }
    QSet<QString> files;
};

TEST_F(ListReader, AnEmptyFileIsAnEmptyPlaylist) {
    EXPECT_EQ(paths(""), QStringList());
    EXPECT_EQ(paths("\r\n \r\n"), QStringList());
    EXPECT_EQ(paths("\xEF\xBB\xBF"), QStringList());
    EXPECT_EQ(paths("#EXTM3U\n"), QStringList());
    EXPECT_EQ(paths("[playlist]\nNumberOfEntries=0\n"), QStringList());
}

TEST_F(ListReader, AllLineEnds) {
    const QStringList both{u"/m/a.mp3"_s, u"/m/b.mp3"_s};
    EXPECT_EQ(paths("/m/a.mp3\n/m/b.mp3\n"), both);
    EXPECT_EQ(paths("/m/a.mp3\r\n/m/b.mp3\r\n"), both);
    EXPECT_EQ(paths("/m/a.mp3\r/m/b.mp3"), both);
    EXPECT_EQ(paths("#EXTM3U\r#EXTINF:12,One\r/m/a.mp3\r\r/m/b.mp3\r"), both);
}

TEST_F(ListReader, AllEncodings) {
    const QString name = u"/m/Zoë – Übung.mp3"_s;
    const QString line = name + u"\r\n"_s;
    EXPECT_EQ(paths(line.toUtf8()), QStringList{name});
    EXPECT_EQ(paths("\xEF\xBB\xBF" + line.toUtf8()), QStringList{name});
    QStringEncoder little(QStringConverter::Utf16LE);
    EXPECT_EQ(paths("\xFF\xFE" + QByteArray(little.encode(line))), QStringList{name});
    QStringEncoder big(QStringConverter::Utf16BE);
    EXPECT_EQ(paths("\xFE\xFF" + QByteArray(big.encode(line))), QStringList{name});
    // Windows-1252: the dash is 0x96.
    EXPECT_EQ(paths("/m/Zo\xEB \x96 \xDC"
                    "bung.mp3\r\n"),
              QStringList{name});
}

TEST_F(ListReader, TheDeclaredEncodingDecides) {
    EXPECT_EQ(paths("#EXTM3U\n#EXTENC: UTF-8\n/m/\xC3\xAB.mp3\n"), QStringList{u"/m/ë.mp3"_s});
    // These bytes are good UTF-8 too; the list says otherwise.
    EXPECT_EQ(paths("#EXTM3U\n#EXTENC:windows-1252\n/m/\xC3\xAB.mp3\n"),
              QStringList{u"/m/Ã«.mp3"_s});
    EXPECT_EQ(paths("#EXTENC: windows-1251\n/m/\xCF.mp3\n"), QStringList{u"/m/П.mp3"_s});
    // A name that means nothing is passed over.
    EXPECT_EQ(paths("#EXTENC: klingon\n/m/\xC3\xAB.mp3\n"), QStringList{u"/m/ë.mp3"_s});
}

TEST_F(ListReader, RelativeNamesAreSeenFromTheListsFolder) {
    EXPECT_EQ(
        paths("a.mp3\nsub/b.mp3\n./c.mp3\n../d.mp3\n"),
        (QStringList{u"/lists/a.mp3"_s, u"/lists/sub/b.mp3"_s, u"/lists/c.mp3"_s, u"/d.mp3"_s}));
}

TEST_F(ListReader, BackslashesInRelativePaths) {
    EXPECT_EQ(paths("Music\\New\\a.mp3\n..\\b.mp3\n"),
              (QStringList{u"/lists/Music/New/a.mp3"_s, u"/b.mp3"_s}));
    // A file whose name really holds a backslash comes first.
    files = {u"/lists/x\\y.mp3"_s, u"/lists/x/y.mp3"_s};
    EXPECT_EQ(paths("x\\y.mp3\n"), QStringList{u"/lists/x\\y.mp3"_s});
}

TEST_F(ListReader, PercentSignsAreDecodedOnlyWhereThatFindsAFile) {
    files = {u"/lists/100%25.mp3"_s, u"/lists/a b.mp3"_s};
    EXPECT_EQ(paths("100%25.mp3\na%20b.mp3\nc%20d.mp3\nfifty%.mp3\n"),
              (QStringList{u"/lists/100%25.mp3"_s, u"/lists/a b.mp3"_s, u"/lists/c%20d.mp3"_s,
                           u"/lists/fifty%.mp3"_s}));
    files = {u"/lists/My Music/a.mp3"_s};
    EXPECT_EQ(paths("My%20Music\\a.mp3\n"), QStringList{u"/lists/My Music/a.mp3"_s});
}

TEST_F(ListReader, FileUris) {
    EXPECT_EQ(paths("file:///m/a%20b.mp3\nFILE://localhost/m/%C3%AB.mp3\nfile:/m/c.mp3\n"),
              (QStringList{u"/m/a b.mp3"_s, u"/m/ë.mp3"_s, u"/m/c.mp3"_s}));
}

TEST_F(ListReader, UrlsAndWindowsPathsStayAsTheyStand) {
    const QStringList kept{u"http://example.org:8000/live?x=a%20b"_s, u"mms://host/stream"_s,
                           u"C:\\Music\\a.mp3"_s, u"\\\\server\\share\\b.wma"_s, u"d:/c.ogg"_s};
    EXPECT_EQ(paths(kept.join(u'\n').toUtf8()), kept);
    EXPECT_EQ(lists::nameOf(kept[2]), u"a.mp3"_s);
    EXPECT_EQ(lists::nameOf(kept[3]), u"b.wma"_s);
}

TEST_F(ListReader, BlanksBelongToANameIfThatIsAFile) {
    files = {u"/lists/ a.mp3"_s, u"/lists/b.mp3"_s};
    EXPECT_EQ(paths(" a.mp3\n  b.mp3 \n"), (QStringList{u"/lists/ a.mp3"_s, u"/lists/b.mp3"_s}));
}

TEST_F(ListReader, CommentsAreNoEntriesButAFileMayBeginLikeOne) {
    files = {u"/lists/#1 Hit.mp3"_s};
    EXPECT_EQ(paths("#EXTM3U\n# a comment.mp3\n#1 Hit.mp3\n#EXTVLCOPT:x\n#EXT-X-A:b\nc.mp3\n"),
              (QStringList{u"/lists/#1 Hit.mp3"_s, u"/lists/c.mp3"_s}));
}

TEST_F(ListReader, ExtInfGivesTitleAndDuration) {
    const auto entries = lists::readList(
        "#EXTM3U\n#EXTINF:61 tvg-id=\"x\",Artist, The - Title\na.mp3\n#EXTINF:-1,Radio\n"
        "http://h/s\nb.mp3\n#EXTINF:nonsense\nc.mp3\n",
        u"/lists"_s, exists());
    ASSERT_EQ(entries.size(), 4U);
    EXPECT_EQ(entries[0].title, u"Artist, The - Title"_s);
    EXPECT_EQ(entries[0].durationMs, 61000);
    EXPECT_EQ(entries[1].title, u"Radio"_s);
    EXPECT_EQ(entries[1].durationMs, -1);
    EXPECT_EQ(entries[2].title, QString());
    EXPECT_EQ(entries[3].durationMs, -1);
}

TEST_F(ListReader, PlsInAnyOrderWithGaps) {
    const auto entries = lists::readList(
        "; saved by hand\r\n[Playlist]\r\nVersion=2\r\nfile10=/m/c.mp3\r\nTitle2=Second\r\n"
        "FILE2 = b.mp3\r\nLength2=125\r\nFile1=sub\\a.mp3\r\nTitle10=Tenth\r\nLength10=-1\r\n"
        "File11=\r\n[other]\r\nFile3=/m/no.mp3\r\n",
        u"/lists"_s, exists());
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].path, u"/lists/sub/a.mp3"_s);
    EXPECT_EQ(entries[1].path, u"/lists/b.mp3"_s);
    EXPECT_EQ(entries[1].title, u"Second"_s);
    EXPECT_EQ(entries[1].durationMs, 125000);
    EXPECT_EQ(entries[2].path, u"/m/c.mp3"_s);
    EXPECT_EQ(entries[2].title, u"Tenth"_s);
    EXPECT_EQ(entries[2].durationMs, -1);
}

TEST_F(ListReader, WhatIsNoPlaylistIsRefused) {
    expectRefused("Dear all,\nthis is a letter about music.\n");
    expectRefused("<html>\n<body><a href=\"song.mp3\">song</a></body>\n</html>\n");
    expectRefused("<!DOCTYPE html>\nsong.mp3\n");
    expectRefused("<?xml version=\"1.0\"?>\n<a>\nsong.mp3\n");
    expectRefused(QByteArray("/m/a.mp3\n\0", 10));
    expectRefused(QByteArray(5000, '\0'));
    expectRefused(
        "\x7F"
        "ELF\x01\x02\n/m/a.mp3\n");
    expectRefused(QByteArray("\xFF\xFE\x00\x00\x61\x00", 6));
    expectRefused("\xFF\xFB\x90\x64 no tags in front \x01\x02.mp3");
}

TEST_F(ListReader, AListOfNamesWithoutAudioSuffixNeedsAFileOrFullPaths) {
    expectRefused("one\ntwo\n");
    files = {u"/lists/two"_s};
    EXPECT_EQ(paths("one\ntwo\n"), (QStringList{u"/lists/one"_s, u"/lists/two"_s}));
    EXPECT_EQ(paths("/gone/one\nhttp://host/stream\n"),
              (QStringList{u"/gone/one"_s, u"http://host/stream"_s}));
}

TEST_F(ListReader, NoMoreThanAPlaylistHolds) {
    QByteArray bytes;
    for (int i = 0; i < lists::maxEntries; ++i) bytes += "a.mp3\n";
    EXPECT_EQ(paths(bytes).size(), lists::maxEntries);
    expectRefused(bytes + "a.mp3\n");
}

TEST_F(ListReader, OrdinaryNamesCostNoLookAtTheDisk) {
    int looks = 0;
    lists::readList("#EXTM3U\n#EXTINF:1,a\n/m/a.mp3\nb.mp3\nsub/c.mp3\nhttp://h/x\n", u"/lists"_s,
                    [&looks](const QString&) { return ++looks > 0; });
    EXPECT_EQ(looks, 0);
}

TEST(ListReaderFile, RefusesAtOnceWhateverTheSize) {
    const support::TempFolder folder;
    const auto zeros = folder / "zeros.m3u";
    std::fclose(std::fopen(zeros.c_str(), "wb"));
    std::filesystem::resize_file(zeros, 1'000'000'000);
    const support::CpuClock timer;
    EXPECT_THROW(lists::readListFile(folder.file(u"zeros.m3u"_s)), platform::Error);
    EXPECT_THROW(lists::readListFile(folder.file(u"missing.m3u"_s)), platform::Error);
    EXPECT_THROW(lists::readListFile(folder.file(QString())), platform::Error);
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST(ListReaderFile, APipeDoesNotBlock) {
    EXPECT_THROW(lists::readListFile(u"/dev/zero"_s), platform::Error);
}

TEST(ListReaderFile, Windows1252NamesTheFilesThatAreThere) {
    const support::TempFolder folder;
    QFile list(folder.file(u"list.m3u"_s));
    ASSERT_TRUE(list.open(QIODevice::WriteOnly));
    list.write("caf\xE9.mp3\r\n");
    list.close();
    const auto entries = lists::readListFile(list.fileName());
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].path, folder.file(u"café.mp3"_s));
}

}  // namespace
