// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/Totals.h"

#include <gtest/gtest.h>

#include "platform/Error.h"

using namespace Qt::Literals::StringLiterals;
using playlist::totals;
using playlist::val;

TEST(Val, ReadsTheLeadingNumber) {
    EXPECT_EQ(val(u"3:05"_s), 3);
    EXPECT_EQ(val(u"05"_s), 5);
    EXPECT_EQ(val(u" 1 2x"_s), 12);
    EXPECT_EQ(val(u"-2.5 s"_s), -2.5);
    EXPECT_EQ(val(u"1.2.3"_s), 1.2);
    EXPECT_EQ(val(u"x3"_s), 0);
    EXPECT_EQ(val(u"-"_s), 0);
    EXPECT_EQ(val(QString()), 0);
}

TEST(Totals, TwoFilesOfOneMinuteThirty) {
    EXPECT_EQ(totals({u"1:30"_s, u"1:30"_s}).durationText, u"Total Duration (mm.s): 3.0"_s);
}

TEST(Totals, FortyFiveSecondsAreShownAsPartOfAMinute) {
    EXPECT_EQ(totals({u"0:45"_s}).durationText, u"Total Duration (mm.s): 0.8"_s);
}

// Also where a binary number has no exact half: 0.15 minutes lie a little below it.
TEST(Totals, HalfATenthOfAMinuteIsRoundedUp) {
    const std::pair<QString, QString> halves[] = {{u"0:03"_s, u"0.1"_s}, {u"0:09"_s, u"0.2"_s},
                                                  {u"0:15"_s, u"0.3"_s}, {u"0:27"_s, u"0.5"_s},
                                                  {u"1:57"_s, u"2.0"_s}, {u"0:14"_s, u"0.2"_s}};
    for (const auto& [duration, shown] : halves)
        EXPECT_EQ(totals({duration}).durationText, u"Total Duration (mm.s): "_s + shown);
}

TEST(Totals, SeventyEightMinutesFitAndOneSecondMoreDoesNot) {
    EXPECT_FALSE(totals({u"78:00"_s}).overCdLimit);
    EXPECT_TRUE(totals({u"78:00"_s, u"0:01"_s}).overCdLimit);
}

TEST(Totals, MinutesAreRoundedHalvesToEven) {
    EXPECT_EQ(totals({u"2:30"_s}).totalMinutes, 2);
    EXPECT_EQ(totals({u"3:30"_s}).totalMinutes, 4);
    EXPECT_EQ(totals({u"2:31"_s}).totalMinutes, 3);
    EXPECT_EQ(totals({u"0:29"_s}).totalMinutes, 0);
}

TEST(Totals, AnEmptyListCountsNothing) {
    const playlist::Totals none = totals({});
    EXPECT_EQ(none.durationText, u"Total Duration (mm.s): 0.0"_s);
    EXPECT_EQ(none.countText, u"Tolal File Count: 0"_s);
    EXPECT_EQ(none.totalMinutes, 0);
}

TEST(Totals, UnknownDurationsCountAsNothing) {
    const playlist::Totals some = totals({QString(), u"?"_s, u"1:00"_s});
    EXPECT_EQ(some.durationText, u"Total Duration (mm.s): 1.0"_s);
    EXPECT_EQ(some.countText, u"Tolal File Count: 3"_s);
}

TEST(Totals, MinutesAboveAnHour) {
    EXPECT_EQ(totals({u"125:07"_s}).totalMinutes, 125);
}

TEST(Totals, MoreMinutesThanCanBeCountedAreAnError) {
    const playlist::Totals longer = totals({u"40000:00"_s, u"0:30"_s});
    EXPECT_EQ(longer.totalMinutes, 32767);
    EXPECT_TRUE(longer.overCdLimit);
    EXPECT_EQ(longer.durationText, u"Total Duration (mm.s): 40000.5"_s);
    EXPECT_EQ(longer.countText, u"Tolal File Count: 2"_s);
}
