// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/Encoding.h"

#include <algorithm>
#include <array>

#include <QStringDecoder>
#include <QStringEncoder>
#include <QtEndian>

#include "platform/NameBytes.h"

namespace lists {
namespace {

// The bytes 0x80 to 0x9F of Windows-1252 (unicode.org, MAPPINGS/VENDORS/MICSFT/WINDOWS/CP1252.TXT);
// unused ones map to themselves. All others stand for the code point of their own number.
constexpr std::array<char16_t, 32> windows1252Table = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString decodeWindows1252(const QByteArray& bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar& c : text)
        if (c.unicode() >= 0x80 && c.unicode() < 0xA0)
            c = QChar(windows1252Table.at(c.unicode() - 0x80U));
    return text;
}

std::optional<QByteArray> encodeWindows1252(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
            bytes += static_cast<char>(unit);
            continue;
        }
        const auto found = std::find(windows1252Table.begin(), windows1252Table.end(), unit);
        if (found == windows1252Table.end()) return std::nullopt;
        bytes += static_cast<char>(0x80 + (found - windows1252Table.begin()));
    }
    return bytes;
}

// UTF-16 is taken unit by unit, so that every pair of bytes comes back as it was.
QString decodeWide(const QByteArray& bytes, bool little) {
    QString units(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < units.size(); ++i) {
        const char* pair = bytes.constData() + 2 * i;
        units[i] =
            QChar(little ? qFromLittleEndian<char16_t>(pair) : qFromBigEndian<char16_t>(pair));
    }
    return units;
}

QByteArray encodeWide(const QString& units, bool little) {
    QByteArray bytes(units.size() * 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < units.size(); ++i) {
        char* pair = bytes.data() + 2 * i;
        if (little)
            qToLittleEndian(units[i].unicode(), pair);
        else
            qToBigEndian(units[i].unicode(), pair);
    }
    return bytes;
}

std::optional<QString> decodeUtf8(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = utf8.decode(bytes);
    return utf8.hasError() ? std::nullopt : std::optional(std::move(text));
}

}  // namespace

std::optional<Encoding> Encoding::named(const QByteArray& name) {
    const QByteArray upper = name.toUpper();
    if (upper == "UTF-8" || upper == "UTF8") return utf8();
    if (upper == "WINDOWS-1252" || upper == "CP1252") return windows1252();
    const bool known =
        QStringDecoder(name.constData()).isValid() && QStringEncoder(name.constData()).isValid();
    return known ? std::optional(Encoding(Form::Named, name)) : std::nullopt;
}

std::optional<QString> Encoding::decode(const QByteArray& bytes) const {
    switch (form_) {
        case Form::Utf8:
            return decodeUtf8(bytes);
        case Form::FileName:
            return platform::fromNameBytes(bytes);
        case Form::Utf16Little:
        case Form::Utf16Big:
            if (bytes.size() % 2 != 0) return std::nullopt;
            return decodeWide(bytes, form_ == Form::Utf16Little);
        case Form::Windows1252:
            return decodeWindows1252(bytes);
        case Form::Named:
            break;
    }
    QStringDecoder decoder(name_.constData());
    const QString text = decoder.decode(bytes);
    if (decoder.hasError()) return std::nullopt;
    QStringEncoder encoder(name_.constData());
    return QByteArray(encoder.encode(text)) == bytes ? std::optional(text) : std::nullopt;
}

std::optional<QByteArray> Encoding::encode(const QString& text) const {
    switch (form_) {
        case Form::Utf8:
        case Form::FileName: {
            QByteArray bytes = platform::toNameBytes(text);
            if (platform::fromNameBytes(bytes) != text) return std::nullopt;
            return bytes;
        }
        case Form::Utf16Little:
        case Form::Utf16Big:
            return encodeWide(text, form_ == Form::Utf16Little);
        case Form::Windows1252:
            return encodeWindows1252(text);
        case Form::Named:
            break;
    }
    QStringEncoder encoder(name_.constData());
    const QByteArray bytes = encoder.encode(text);
    QStringDecoder decoder(name_.constData());
    return QString(decoder.decode(bytes)) == text ? std::optional(bytes) : std::nullopt;
}

}  // namespace lists
