// SPDX-License-Identifier: GPL-3.0-or-later
// Lists in the encodings of many makers, as iconv and Python write them: the names that are there
// decide, line by line.
#include <filesystem>
#include <fstream>

#include <QSet>
#include <gtest/gtest.h>

#include "lists/ListReader.h"
#include "lists/ListWriter.h"
#include "platform/Error.h"
#include "platform/NameBytes.h"
#include "platform/Paths.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class Encodings : public testing::Test {
  protected:
    QStringList paths(const QByteArray& bytes) {
        QStringList result;
        for (const auto& entry : lists::readList(
                 bytes, u"/m"_s, [this](const QString& path) { return files.contains(path); }))
            result.append(entry.path);
        return result;
    }
    QSet<QString> files;
};

// python3 -c "print('Песня.mp3'.encode('cp1251'))", and so on.
const QByteArray russian = "/m/\xCF\xE5\xF1\xED\xFF.mp3\r\n";
const QByteArray japanese = "/m/\x89\xB9\x8A\x79.mp3\r\n";
const QByteArray chinese = "/m/\xD2\xF4\xC0\xD6.mp3\r\n";

TEST_F(Encodings, NamesThatAreThereDecide) {
    files = {u"/m/Песня.mp3"_s};
    EXPECT_EQ(paths(russian), QStringList{u"/m/Песня.mp3"_s});
    files = {u"/m/音楽.mp3"_s};
    EXPECT_EQ(paths(japanese), QStringList{u"/m/音楽.mp3"_s});
    files = {u"/m/音乐.mp3"_s};
    EXPECT_EQ(paths(chinese), QStringList{u"/m/音乐.mp3"_s});
}

TEST_F(Encodings, EachLineIsReadForItself) {
    files = {u"/m/Песня.mp3"_s, u"/m/音楽.mp3"_s, u"/m/Zoë.mp3"_s};
    EXPECT_EQ(paths(russian + japanese + u"/m/Zoë.mp3\n"_s.toUtf8()),
              (QStringList{u"/m/Песня.mp3"_s, u"/m/音楽.mp3"_s, u"/m/Zoë.mp3"_s}));
}

TEST_F(Encodings, AMissingFileIsReadAsTheOthersAre) {
    files = {u"/m/Песня.mp3"_s};
    EXPECT_EQ(paths("/m/\xC8\xEC\xFF.mp3\n" + russian),
              (QStringList{u"/m/Имя.mp3"_s, u"/m/Песня.mp3"_s}));
}

TEST_F(Encodings, OneStrayByteSpoilsOnlyItsLine) {
    QByteArray list;
    QStringList names;
    for (int i = 0; i < 300; ++i) {
        names += u"/m/Größe %1.mp3"_s.arg(i);
        list += names.last().toUtf8() + "\n";
        files += names.last();
    }
    files += u"/m/café.mp3"_s;
    EXPECT_EQ(paths(list + "/m/caf\xE9.mp3\n"), names + QStringList{u"/m/café.mp3"_s});
    files.clear();
    EXPECT_EQ(paths(list + "/m/caf\xE9.mp3\n").mid(0, 300), names);
}

// GBK for a name whose bytes are good UTF-8 as well.
TEST_F(Encodings, GoodUtf8IsNotWhatItSeemsWhereOnlyTheOtherNameIsThere) {
    files = {u"/m/联通.mp3"_s};
    EXPECT_EQ(paths("/m/\xC1\xAA\xCD\xA8.mp3\n"), QStringList{u"/m/联通.mp3"_s});
}

TEST_F(Encodings, Utf16WithoutAMark) {
    const QString list = u"C:\\Музыка\\Песня.mp3\r\n/m/音.mp3\r\n"_s;
    const QByteArray little(reinterpret_cast<const char*>(list.utf16()), list.size() * 2);
    QByteArray big = little;
    for (qsizetype i = 0; i + 1 < big.size(); i += 2) std::swap(big[i], big[i + 1]);
    const QStringList names{u"C:\\Музыка\\Песня.mp3"_s, u"/m/音.mp3"_s};
    EXPECT_EQ(paths(little), names);
    EXPECT_EQ(paths(big), names);
}

TEST_F(Encodings, ListsWithoutFilesCostFewLooks) {
    QByteArray list;
    for (int i = 0; i < 5000; ++i) list += "/m/\xCF\xE5" + QByteArray::number(i) + ".mp3\n";
    int looks = 0;
    lists::readList(list, u"/m"_s, [&looks](const QString&) { return ++looks < 0; });
    EXPECT_LT(looks, 4000);
}

// A name that is no UTF-8 (here Windows-1252, on Linux) is found, and written as it is on disk.
TEST(FileNames, ThatAreNoUtf8AreListedAndSaved) {
    if (platform::nativeSeparator() != u'/') return;
    const support::TempFolder folder;
    const std::filesystem::path sound = folder / "\xD0\xD1\xFF \xE9.mp3";
    std::ofstream(sound) << "sound";
    std::ofstream(folder / "list.m3u") << "\xD0\xD1\xFF \xE9.mp3\n";
    const auto entries = lists::readListFile(folder.file(u"list.m3u"_s));
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(platform::toPath(entries[0].path), sound);
    EXPECT_EQ(lists::writeM3u(entries).toStdString(), sound.native() + "\r\n");
    const auto again = lists::readList(lists::writePls(entries), u"/"_s, lists::isFile);
    ASSERT_EQ(again.size(), 1U);
    EXPECT_EQ(again[0].path, entries[0].path);
}

TEST(FileNames, EveryNameHasATextAndComesBack) {
    if (platform::nativeSeparator() != u'/') return;
    for (const QByteArray& name :
         {QByteArray("a\xFFz"), QByteArray("\xC3"), QByteArray("\xED\xA0\x80"),
          QByteArray("\xF0\x9F\x8E\xB5\x80"), QByteArray("Zo\xC3\xAB"),
          QByteArray("\xF4\x90\x80\x80"), QByteArray("\xC0\xAF")})
        EXPECT_EQ(platform::toNameBytes(platform::fromNameBytes(name)), name)
            << name.toHex().data();
    EXPECT_EQ(platform::fromNameBytes("\xF0\x9F\x8E\xB5"), u"\U0001F3B5"_s);
}

TEST(Saved, LoadsAgainWhateverTheTitles) {
    QString every;
    for (char16_t c = 1; c < 0x100; ++c) every += QChar(c);
    const std::vector<lists::ListedEntry> entries{{u"/m/a.mp3"_s, u"\x1B$B%F%9%H\x1B(B"_s, 1000},
                                                  {u"/m/b.mp3"_s, every, 2000},
                                                  {u"/m/d.mp3"_s, u"\U0001F3B5"_s, -1},
                                                  {u"/m/c.mp3"_s, QString(QChar(0xD800)), -1}};
    const auto again = lists::readList(lists::writePls(entries), u"/"_s, lists::isFile);
    ASSERT_EQ(again.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(again[i].path, entries[i].path);
    EXPECT_EQ(again[0].title, u"$B%F%9%H(B"_s);
    EXPECT_EQ(again[2].title, u"\U0001F3B5"_s);
    for (const QString& name : {u"/m/\x1B.mp3"_s, u"/m/a\nb.mp3"_s})
        EXPECT_THROW(lists::writeM3u({{name, {}, -1}}), platform::Error);
}

}  // namespace
