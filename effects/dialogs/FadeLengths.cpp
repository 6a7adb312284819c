// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/FadeLengths.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace effects {
namespace {

constexpr std::array<std::int32_t, 8> seconds = {5, 10, 15, 20, 25, 30, 40, 50};

QStringList lengths(const QString& pattern) {
    QStringList items;
    for (const std::int32_t length : seconds) items += pattern.arg(length);
    return items;
}

}  // namespace

QStringList fadeInLengths() {
    return lengths(u"front %1 secs of file"_s);
}

QStringList fadeOutLengths() {
    return lengths(u"end %1 secs of file"_s);
}

std::optional<std::int32_t> fadeMilliseconds(const QStringList& lengths, const QString& text) {
    const qsizetype place = lengths.indexOf(text);
    if (place < 0) return std::nullopt;
    return seconds.at(static_cast<std::size_t>(place)) * 1000;
}

}  // namespace effects
