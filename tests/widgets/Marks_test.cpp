// SPDX-License-Identifier: GPL-3.0-or-later
// The marks of a list's rows, and a bar that moves within a piece of work.
#include <QImage>

#include "tests/support/Gui.h"
#include "widgets/ListView.h"
#include "widgets/ProgressBar.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class Marks : public testing::Test {
  protected:
    Marks() {
        view.setColumns({u"Track"_s, u"Title"_s});
        view.setRows({{u"1"_s, u"One"_s}, {u"2"_s, u"Two"_s}});
    }
    QVariant shown(int row, int column, int role) const {
        return view.model()->index(row - 1, column).data(role);
    }
    widgets::ListView view;
};

TEST_F(Marks, ShowTheReasonAsTooltipInEveryColumn) {
    view.setMark(2, u"b.mp3 cannot be read."_s);
    EXPECT_EQ(shown(2, 0, Qt::ToolTipRole), u"b.mp3 cannot be read."_s);
    EXPECT_EQ(shown(2, 1, Qt::ToolTipRole), u"b.mp3 cannot be read."_s);
    EXPECT_FALSE(shown(2, 0, Qt::DecorationRole).value<QIcon>().isNull());
    EXPECT_EQ(shown(2, 0, Qt::DisplayRole), u"2"_s);
    EXPECT_TRUE(shown(1, 0, Qt::DecorationRole).isNull());
    EXPECT_EQ(shown(1, 1, Qt::ToolTipRole), u"One"_s);
}

TEST_F(Marks, GoWhenTheyAreClearedOrTheRowsAreReplaced) {
    view.setMark(1, u"No."_s);
    view.clearMarks();
    EXPECT_TRUE(view.mark(1).isEmpty());
    view.setMark(1, u"No."_s);
    view.setRows({{u"1"_s, u"Other"_s}});
    EXPECT_TRUE(view.mark(1).isEmpty());
}

TEST_F(Marks, OfARowThatThereIsNotAreIgnored) {
    view.setMark(0, u"No."_s);
    view.setMark(3, u"No."_s);
    EXPECT_TRUE(view.mark(0).isEmpty());
    EXPECT_TRUE(view.mark(3).isEmpty());
}

// How many of a bar's pixels in its middle line differ from an empty bar's.
int filled(widgets::ProgressBar& bar, int value, double fraction) {
    bar.setValue(0);
    bar.setFraction(-1);
    const QImage empty = bar.grab().toImage();
    bar.setValue(value);
    bar.setFraction(fraction);
    const QImage image = bar.grab().toImage();
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        if (image.pixel(x, image.height() / 2) != empty.pixel(x, image.height() / 2)) ++count;
    return count;
}

TEST(ProgressBar, MovesWithinAPieceWithoutAnotherValue) {
    widgets::ProgressBar bar;
    bar.resize(410, 16);
    bar.setTextVisible(false);
    bar.setMaximum(4);
    const int whole = filled(bar, 2, -1);
    const int begun = filled(bar, 2, 0);
    const int half = filled(bar, 2, 0.5);
    const int done = filled(bar, 2, 1);
    EXPECT_LT(begun, half);
    EXPECT_LT(half, done);
    EXPECT_NEAR(done, whole, 6);
    EXPECT_EQ(bar.value(), 2);
    EXPECT_EQ(bar.maximum(), 4);
}

}  // namespace
