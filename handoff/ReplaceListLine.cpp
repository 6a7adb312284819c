// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/ReplaceListLine.h"

#include <algorithm>
#include <array>
#include <optional>

#include <QStringDecoder>
#include <QStringEncoder>
#include <QtEndian>

#include "platform/Error.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

// A file is worked on as a text of its code units: the bytes of an 8-bit encoding one by one, those
// of UTF-16 in pairs. So no unit is ever changed by being read and written.

enum class Encoding { Utf8, Windows1252, Utf16Little, Utf16Big };

bool isWide(Encoding encoding) {
    return encoding == Encoding::Utf16Little || encoding == Encoding::Utf16Big;
}

bool isUtf8(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    return !utf8.hasError();
}

Encoding encodingOf(const QByteArray& list) {
    if (list.startsWith("\xFF\xFE")) return Encoding::Utf16Little;
    if (list.startsWith("\xFE\xFF")) return Encoding::Utf16Big;
    return isUtf8(list) ? Encoding::Utf8 : Encoding::Windows1252;
}

QString unitsOf(const QByteArray& bytes, Encoding encoding) {
    if (!isWide(encoding)) return QString::fromLatin1(bytes);
    if (bytes.size() % 2 != 0) throw platform::Error("The playlist ends in half a character.");
    QString units(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < units.size(); ++i) {
        const char* pair = bytes.constData() + 2 * i;
        units[i] = QChar(encoding == Encoding::Utf16Little ? qFromLittleEndian<char16_t>(pair)
                                                           : qFromBigEndian<char16_t>(pair));
    }
    return units;
}

QByteArray bytesOf(const QString& units, Encoding encoding) {
    if (!isWide(encoding)) return units.toLatin1();
    QByteArray bytes(units.size() * 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < units.size(); ++i) {
        char* pair = bytes.data() + 2 * i;
        if (encoding == Encoding::Utf16Little)
            qToLittleEndian(units[i].unicode(), pair);
        else
            qToBigEndian(units[i].unicode(), pair);
    }
    return bytes;
}

// The bytes 0x80 to 0x9F of Windows-1252 (unicode.org, MAPPINGS/VENDORS/MICSFT/WINDOWS/CP1252.TXT);
// 0 where a byte stands for nothing. All others stand for the code point of their own number.
constexpr std::array<char16_t, 32> windows1252 = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::optional<QChar> unitOfWindows1252(QChar letter) {
    if (letter.unicode() < 0x80 || (letter.unicode() >= 0xA0 && letter.unicode() <= 0xFF))
        return letter;
    const auto found = std::find(windows1252.begin(), windows1252.end(), letter.unicode());
    if (found == windows1252.end()) return std::nullopt;
    return QChar(static_cast<char16_t>(0x80 + (found - windows1252.begin())));
}

/// A text as code units of the encoding; nothing where it has no form in it.
std::optional<QString> encoded(const QString& text, Encoding encoding) {
    if (isWide(encoding)) return text;
    if (encoding == Encoding::Utf8) {
        QStringEncoder utf8(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
        const QByteArray bytes = utf8.encode(text);
        return utf8.hasError() ? std::nullopt : std::optional(QString::fromLatin1(bytes));
    }
    QString units;
    for (const QChar letter : text) {
        const auto unit = unitOfWindows1252(letter);
        if (!unit) return std::nullopt;
        units += *unit;
    }
    return units;
}

bool isLineEnd(QChar unit) {
    return unit == u'\n' || unit == u'\r';
}

QString replaceLine(const QString& list, const std::optional<QString>& from, const QString& to) {
    QString result;
    result.reserve(list.size() + to.size());
    for (qsizetype start = 0; start < list.size();) {
        const auto end = std::find_if(list.begin() + start, list.end(), isLineEnd) - list.begin();
        const QStringView line = QStringView(list).mid(start, end - start);
        result += from && line == *from ? QStringView(to) : line;
        result += "\r\n"_L1;
        start = end + (QStringView(list).mid(end, 2) == "\r\n"_L1 ? 2 : 1);
    }
    return result;
}

}  // namespace

QByteArray replaceListLine(const QByteArray& list, const QString& from, const QString& to) {
    const Encoding encoding = encodingOf(list);
    const QByteArray mark = isWide(encoding)                  ? list.left(2)
                            : list.startsWith("\xEF\xBB\xBF") ? list.left(3)
                                                              : QByteArray();
    const auto fromUnits = encoded(from, encoding);
    const auto toUnits = encoded(to, encoding);
    if (!toUnits || to.contains(u'\n') || to.contains(u'\r'))
        throw platform::Error("“" + to.toStdString() +
                              "” cannot be written into the playlist: its encoding has no form "
                              "for that name.");
    const QString units = unitsOf(list.mid(mark.size()), encoding);
    return mark + bytesOf(replaceLine(units, fromUnits, *toUnits), encoding);
}

}  // namespace handoff
