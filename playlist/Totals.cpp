// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/Totals.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace playlist {
namespace {

constexpr double kCdMinutes = 78;

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

/// The characters of the number that the text begins with, blanks left out.
QString leadingNumber(const QString& text) {
    QString number;
    bool point = false;
    for (const QChar c : text) {
        if (isBlank(c)) continue;
        const bool sign = (c == u'-' || c == u'+') && number.isEmpty();
        const bool firstPoint = c == u'.' && !point;
        if (!isDigit(c) && !sign && !firstPoint) break;
        point = point || c == u'.';
        number += c;
    }
    return number;
}

std::int16_t roundHalfToEven(double minutes) {
    const double rounded = std::nearbyint(minutes);
    constexpr double most = std::numeric_limits<std::int16_t>::max();
    return static_cast<std::int16_t>(std::min(rounded, most));
}

/// One decimal, a half away from zero: 45 seconds, 0.75 minutes, are 0.8.
QString oneDecimal(double seconds) {
    const double tenths = std::floor(seconds / 6 + 0.5);
    return QString::number(tenths / 10, 'f', 1);
}

}  // namespace

double val(const QString& text) {
    const QString number = leadingNumber(text);
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok ? value : 0;
}

Totals totals(const std::vector<QString>& durations) {
    double seconds = 0;
    for (const QString& text : durations) seconds += val(text) * 60 + val(text.right(2));
    const double minutes = seconds / 60;
    return {roundHalfToEven(minutes), minutes > kCdMinutes,
            u"Total Duration (mm.s): "_s + oneDecimal(seconds),
            u"Tolal File Count: "_s + QString::number(durations.size())};
}

}  // namespace playlist
