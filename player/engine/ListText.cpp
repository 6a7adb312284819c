// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/ListText.h"

#include <algorithm>
#include <optional>

#include <QLocale>
#include <QStringDecoder>

#include "platform/Error.h"

namespace player {
namespace {

using namespace Qt::Literals::StringLiterals;

std::optional<QString> decode(const QByteArray& bytes, const char* encoding) {
    QStringDecoder decoder(encoding);
    if (!decoder.isValid()) return std::nullopt;
    const QString text = decoder.decode(bytes);
    if (decoder.hasError()) return std::nullopt;
    return text;
}

std::optional<QString> decode(const QByteArray& bytes, QStringConverter::Encoding encoding) {
    QStringDecoder decoder(encoding);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError()) return std::nullopt;
    return text;
}

// The C1 range of Windows-1252 by code point (unicode.org, CP1252.TXT); unused bytes map to
// themselves.
constexpr char16_t kWindows1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString decodeWindows1252(const QByteArray& bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar& c : text)
        if (c.unicode() >= 0x80 && c.unicode() < 0xA0) c = QChar(kWindows1252[c.unicode() - 0x80]);
    return text;
}

/// The encoding that lists without any mark had on Windows machines of this language.
const char* narrowEncodingOf(QLocale::Language language) {
    switch (language) {
        case QLocale::Russian:
        case QLocale::Ukrainian:
        case QLocale::Belarusian:
        case QLocale::Bulgarian:
        case QLocale::Macedonian:
        case QLocale::Serbian:
            return "windows-1251";
        case QLocale::Polish:
        case QLocale::Czech:
        case QLocale::Slovak:
        case QLocale::Hungarian:
        case QLocale::Croatian:
        case QLocale::Slovenian:
        case QLocale::Romanian:
            return "windows-1250";
        case QLocale::Greek:
            return "windows-1253";
        case QLocale::Turkish:
            return "windows-1254";
        case QLocale::Hebrew:
            return "windows-1255";
        case QLocale::Arabic:
        case QLocale::Persian:
            return "windows-1256";
        case QLocale::Japanese:
            return "Shift_JIS";
        case QLocale::Korean:
            return "windows-949";
        case QLocale::Chinese:
            return "GBK";
        default:
            return "System";
    }
}

std::optional<QString> decodeMarked(const QByteArray& bytes) {
    if (bytes.startsWith("\xEF\xBB\xBF")) return decode(bytes.mid(3), QStringConverter::Utf8);
    if (bytes.startsWith("\xFF\xFE")) return decode(bytes.mid(2), QStringConverter::Utf16LE);
    if (bytes.startsWith("\xFE\xFF")) return decode(bytes.mid(2), QStringConverter::Utf16BE);
    return std::nullopt;
}

std::optional<QString> decodeDeclared(const QByteArray& bytes) {
    const QByteArray head = bytes.left(4096).toUpper();
    const qsizetype at = head.indexOf("#EXTENC:");
    if (at < 0 || (at > 0 && head[at - 1] != '\n' && head[at - 1] != '\r')) return std::nullopt;
    qsizetype end = at;
    while (end < head.size() && head[end] != '\n' && head[end] != '\r') ++end;
    const QByteArray name = head.mid(at + 8, end - at - 8).trimmed();
    if (name == "WINDOWS-1252" || name == "CP1252") return decodeWindows1252(bytes);
    return decode(bytes, name.constData());
}

QStringList splitLines(const QString& text) {
    QStringList lines;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = start;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r') ++end;
        lines.append(text.mid(start, end - start));
        start = text.mid(end, 2) == "\r\n"_L1 ? end + 2 : end + 1;
    }
    return lines;
}

bool isControl(QChar c) {
    return c.unicode() < 0x20 && c != u'\t' && c != u'\r' && c != u'\n' && c != u'\f' &&
           c.unicode() != 0x1A;  // the end-of-file mark of old systems
}

QString checked(const QString& text) {
    if (std::any_of(text.begin(), text.end(), isControl)) throw platform::Error("it is not text");
    return text;
}

}  // namespace

QStringList decodeListLines(const QByteArray& bytes,
                            const std::function<int(const QStringList&)>& rate) {
    if (const auto text = decodeMarked(bytes)) return splitLines(checked(*text));
    if (bytes.contains('\0')) throw platform::Error("it is not text");
    if (const auto text = decodeDeclared(bytes)) return splitLines(checked(*text));
    if (const auto text = decode(bytes, QStringConverter::Utf8)) return splitLines(checked(*text));

    const QStringList western = splitLines(checked(decodeWindows1252(bytes)));
    const auto local = decode(bytes, narrowEncodingOf(QLocale::system().language()));
    if (!local) return western;
    const QStringList ofLanguage = splitLines(checked(*local));
    return rate(ofLanguage) > rate(western) ? ofLanguage : western;
}

}  // namespace player
