// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include <QString>

namespace playlist {

/// The running totals under the list, as shown and as used. A plain value.
struct Totals {
    /// Whole minutes, halves to even; longer lists have the most that fits, so that they never pass
    /// for short ones.
    std::int16_t totalMinutes = 0;
    bool overCdLimit = false;  ///< more than the 78 minutes that an audio CD is given
    QString durationText;      ///< minutes with one decimal, in spite of its caption
    QString countText;
};

/// The leading decimal number of a text, 0 where there is none: "3:05" gives 3. Blanks before and
/// within the number are passed over.
double val(const QString& text);

/// Adds up the Duration texts of the list, each "minutes, one separator, two digits of seconds";
/// a text that is empty or says something else counts with what leading numbers it has.
Totals totals(const std::vector<QString>& durations);

}  // namespace playlist
