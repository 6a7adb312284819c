// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/NameBytes.h"

#include <algorithm>

namespace platform {
namespace {

// The length of the well-formed UTF-8 sequence of more than one byte that begins here (Unicode 15,
// table 3-7); 0 where there is none.
qsizetype sequenceAt(const QByteArray& bytes, qsizetype at) {
    const auto byte = [&](qsizetype offset) {
        return at + offset < bytes.size() ? static_cast<unsigned char>(bytes[at + offset]) : 0U;
    };
    const unsigned first = byte(0);
    const qsizetype length = first < 0xC2   ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
    const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    for (qsizetype i = 1; i < length; ++i)
        if (byte(i) < (i == 1 ? low : 0x80) || byte(i) > (i == 1 ? high : 0xBF)) return 0;
    return length;
}

bool isSurrogatePair(const QString& text, qsizetype at) {
    return at + 1 < text.size() && text[at].isHighSurrogate() && text[at + 1].isLowSurrogate();
}

}  // namespace

QByteArray toNameBytes(const QString& text) {
    if (text.isValidUtf16()) return text.toUtf8();
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (isSurrogatePair(text, i))
            bytes += QStringView(text).mid(i++, 2).toUtf8();
        else if (unit >= 0xDC80 && unit <= 0xDCFF)
            bytes += static_cast<char>(unit & 0xFF);
        else
            bytes += QStringView(text).mid(i, 1).toUtf8();
    }
    return bytes;
}

QString fromNameBytes(const QByteArray& bytes) {
    QString text;
    qsizetype start = 0;  // of what has not been taken yet
    for (qsizetype i = 0; i < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const qsizetype length = byte < 0x80 ? 1 : sequenceAt(bytes, i);
        if (length == 0) {
            text += QString::fromUtf8(bytes.constData() + start, i - start);
            text += QChar(static_cast<char16_t>(0xDC00 + byte));
            start = i + 1;
        }
        i += std::max<qsizetype>(length, 1);
    }
    return text + QString::fromUtf8(bytes.constData() + start, bytes.size() - start);
}

}  // namespace platform
