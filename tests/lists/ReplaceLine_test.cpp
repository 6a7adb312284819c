// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "lists/ListText.h"
#include "tests/platform/file/FileTools.h"

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray replaceListLine(const QByteArray& list, const QString& from, const QString& to) {
    lists::ListText text(list, [](const QString&) { return false; });
    text.replaceLine(from, to);
    return text.bytes();
}

QByteArray utf16(const QString& text) {
    return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

}  // namespace

TEST(ReplaceListLine, ReplacesWholeLinesOnly) {
    EXPECT_EQ(replaceListLine("/a/b.mp3\r\n/a/b.mp3 \r\n /a/b.mp3\r\n/A/b.mp3\r\nb.mp3\r\n"
                              "#/a/b.mp3\r\n/a/b.mp3.mp3\r\n/a/b.mp3\r\n",
                              u"/a/b.mp3"_s, u"/a/new.mp3"_s),
              "/a/new.mp3\r\n/a/b.mp3 \r\n /a/b.mp3\r\n/A/b.mp3\r\nb.mp3\r\n"
              "#/a/b.mp3\r\n/a/b.mp3.mp3\r\n/a/new.mp3\r\n"_ba);
}

TEST(ReplaceListLine, EveryLineEndsInCrLfAfterwards) {
    EXPECT_EQ(replaceListLine("one\ntwo\rthree\r\n\n\r\rlast", u"two"_s, u"2"_s),
              "one\r\n2\r\nthree\r\n\r\n\r\n\r\nlast\r\n"_ba);
    EXPECT_EQ(replaceListLine("two", u"two"_s, u"2"_s), "2\r\n"_ba);
    EXPECT_EQ(replaceListLine("", u"two"_s, u"2"_s), ""_ba);
}

TEST(ReplaceListLine, KeepsUtf8WithAndWithoutAMark) {
    const QString from = u"/Müsik/ä.mp3"_s;
    const QString to = u"/Müsik/音.mp3"_s;
    EXPECT_EQ(replaceListLine(from.toUtf8() + "\n", from, to), to.toUtf8() + "\r\n");
    EXPECT_EQ(replaceListLine("\xEF\xBB\xBF" + from.toUtf8() + "\r\nx\r\n", from, to),
              "\xEF\xBB\xBF" + to.toUtf8() + "\r\nx\r\n");
}

TEST(ReplaceListLine, KeepsUtf16OfBothOrders) {
    const QString from = u"/Müsik/ä.mp3"_s;
    const QByteArray list = utf16(u"\uFEFF#x\n"_s + from + u"\r\n\U0001F3B5"_s);
    const QByteArray revised = utf16(u"\uFEFF#x\r\n/Müsik/音.mp3\r\n\U0001F3B5\r\n"_s);
    EXPECT_EQ(replaceListLine(list, from, u"/Müsik/音.mp3"_s), revised);

    const auto swapped = [](QByteArray bytes) {
        for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
        return bytes;
    };
    EXPECT_EQ(replaceListLine(swapped(list), from, u"/Müsik/音.mp3"_s), swapped(revised));
}

TEST(ReplaceListLine, KeepsWindows1252) {
    EXPECT_EQ(replaceListLine("/a/caf\xE9.mp3\n/a/\x80 \x93x\x94.mp3\n", u"/a/café.mp3"_s,
                              u"/a/œuvre – été.mp3"_s),
              "/a/\x9Cuvre \x96 \xE9t\xE9.mp3\r\n/a/\x80 \x93x\x94.mp3\r\n"_ba);
    EXPECT_EQ(replaceListLine("/a/\x80.mp3\n", u"/a/€.mp3"_s, u"/a/x.mp3"_s), "/a/x.mp3\r\n"_ba);
}

// A name that the file's encoding cannot hold never becomes a question mark.
TEST(ReplaceListLine, RefusesANameWithoutAForm) {
    const auto error = [](const QByteArray& list, const QString& to) {
        return test::errorOf([&] { replaceListLine(list, u"/a/b.mp3"_s, to); });
    };
    EXPECT_THAT(error("/a/b.mp3\n/a/caf\xE9.mp3\n", u"/a/音.mp3"_s),
                testing::HasSubstr("encoding"));
    EXPECT_THAT(error("/a/b.mp3\n", u"/a/"_s + QChar(0xD800)), testing::HasSubstr("encoding"));
    EXPECT_THAT(error("/a/b.mp3\n", u"/a/two\nlines.mp3"_s), testing::HasSubstr("two"));
    EXPECT_THAT(error("\xFF\xFE"
                      "abc",
                      u"/a/c.mp3"_s),
                testing::HasSubstr("half a character"));
}

// What the file says in no known way is left as it is, bit for bit.
TEST(ReplaceListLine, LeavesForeignBytesAlone) {
    QByteArray list;
    for (int byte = 0; byte < 256; ++byte)
        if (byte != '\n' && byte != '\r') list += static_cast<char>(byte);
    EXPECT_EQ(replaceListLine(list, u"/a/音.mp3"_s, u"/a/b.mp3"_s), list + "\r\n");
}
