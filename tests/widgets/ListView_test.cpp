// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ListView.h"

#include <gmock/gmock.h>

#include "tests/support/Gui.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;
using widgets::ListView;

namespace {

std::vector<QStringList> rows(int count) {
    std::vector<QStringList> made;
    for (int i = 1; i <= count; ++i) {
        made.push_back({QString::number(i), u"3:05"_s, u"Title %1"_s.arg(i)});
    }
    return made;
}

struct ListViewTest : testing::Test {
    ListView list;

    ListViewTest() {
        list.setColumns({u"Track"_s, u"Duration"_s, u"Title"_s});
        list.resize(400, 300);
    }
};

}  // namespace

TEST_F(ListViewTest, RowsAndSubItemsCountFromOne) {
    EXPECT_EQ(list.rowCount(), 0);
    EXPECT_EQ(list.currentRow(), 0);
    list.setRows(rows(3));
    EXPECT_EQ(list.rowCount(), 3);
    EXPECT_EQ(list.rowText(3), u"3"_s);
    EXPECT_EQ(list.subItem(3, 2), u"Title 3"_s);
    list.setSubItem(3, 2, u"New"_s);
    EXPECT_EQ(list.subItem(3, 2), u"New"_s);
}

TEST_F(ListViewTest, AfterARefillTheFirstRowIsTheSelectedItem) {
    list.setRows(rows(3));
    list.selectRow(3);
    list.setRows(rows(2));
    EXPECT_EQ(list.currentRow(), 1);
    EXPECT_THAT(list.selectedRows(), ElementsAre(1));
    list.setRows({});
    EXPECT_EQ(list.currentRow(), 0);
    EXPECT_THAT(list.selectedRows(), IsEmpty());
}

TEST_F(ListViewTest, RowsAddedOneByOneBehaveLikeARefill) {
    EXPECT_EQ(list.addRow(u"1"_s), 1);
    EXPECT_EQ(list.addRow(u"2"_s), 2);
    list.setSubItem(2, 2, u"late"_s);
    EXPECT_EQ(list.subItem(2, 1), QString());
    EXPECT_EQ(list.subItem(2, 2), u"late"_s);
    EXPECT_EQ(list.currentRow(), 1);
}

TEST_F(ListViewTest, FlagsAreKeptApartFromTheSelectedItem) {
    list.setRows(rows(4));
    list.setAllSelected(true);
    EXPECT_THAT(list.selectedRows(), ElementsAre(1, 2, 3, 4));
    list.setSelected(2, false);
    EXPECT_THAT(list.selectedRows(), ElementsAre(1, 3, 4));
    EXPECT_FALSE(list.isSelected(2));
    EXPECT_EQ(list.currentRow(), 1);
    list.setAllSelected(false);
    EXPECT_THAT(list.selectedRows(), IsEmpty());
    EXPECT_EQ(list.currentRow(), 1) << "the selected item stays";
}

TEST_F(ListViewTest, SingleSelectionKeepsOnlyTheSelectedItem) {
    list.setRows(rows(4));
    list.setAllSelected(true);
    list.setMultiSelect(false);
    EXPECT_FALSE(list.multiSelect());
    EXPECT_THAT(list.selectedRows(), ElementsAre(1));
    list.setMultiSelect(true);
    EXPECT_TRUE(list.multiSelect());
    EXPECT_THAT(list.selectedRows(), ElementsAre(1));
}

TEST_F(ListViewTest, AMissingRowIsNotSelected) {
    list.setRows(rows(2));
    list.selectRow(3);
    list.selectRow(0);
    EXPECT_EQ(list.currentRow(), 1);
}

TEST_F(ListViewTest, MouseAndKeyboardSelect) {
    list.setRows(rows(5));
    ASSERT_TRUE(support::activate(list));
    const auto clickRow = [this](int row, Qt::KeyboardModifiers keys) {
        const QModelIndex index = list.model()->index(row - 1, 2);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, list.visualRect(index).center());
    };
    clickRow(2, Qt::NoModifier);
    EXPECT_EQ(list.currentRow(), 2);
    clickRow(4, Qt::ShiftModifier);
    EXPECT_THAT(list.selectedRows(), ElementsAre(2, 3, 4));
    list.setMultiSelect(false);
    clickRow(1, Qt::ControlModifier);
    EXPECT_THAT(list.selectedRows(), ElementsAre(1));
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(list.currentRow(), 2);
}

TEST_F(ListViewTest, DoubleClickNamesTheRow) {
    list.setRows(rows(5));
    ASSERT_TRUE(support::activate(list));
    int row = 0;
    QObject::connect(&list, &ListView::rowDoubleClicked, [&row](int which) { row = which; });
    const QPoint place = list.visualRect(list.model()->index(2, 1)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(row, 3);
}
