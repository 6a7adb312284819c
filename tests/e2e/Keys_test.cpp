// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLineEdit>

#include "tests/support/MainWindow.h"
#include "widgets/SkinSlider.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

struct Keys : MainWindow {
    void key(Qt::Key code, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QTest::keyClick(window->focusWidget(), code, with);
    }
};

}  // namespace

TEST_F(Keys, DeleteRemovesTheSelectedEntry) {
    addSongs(3);
    list().selectRow(2);
    key(Qt::Key_Delete);
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"3.mp3"_s}));
}

TEST_F(Keys, AltUpAndDownMoveTheSelectedEntry) {
    addSongs(3);
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(titles(), QStringList({u"2.mp3"_s, u"1.mp3"_s, u"3.mp3"_s}));
    EXPECT_EQ(list().currentRow(), 2);
    key(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"2.mp3"_s, u"3.mp3"_s}));
}

TEST_F(Keys, CtrlOAndCtrlSOpenTheDialogs) {
    const auto open = cancelFileDialog();
    key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(allAnswered());
    const auto save = cancelFileDialog();
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(allAnswered());
    EXPECT_TRUE(open->shown && save->shown);
}

TEST_F(Keys, InsertAndCtrlShiftOAddAFile) {
    answerFileDialog(song(u"1.mp3"_s));
    key(Qt::Key_Insert);
    EXPECT_TRUE(allAnswered());
    answerFileDialog(song(u"2.mp3"_s));
    key(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(allAnswered());
    EXPECT_EQ(list().rowCount(), 2);
}

TEST_F(Keys, TheEditingLockHoldsForTheKeysToo) {
    addSongs(3);
    press("CommandPlay1");
    list().setFocus();
    key(Qt::Key_Delete);
    key(Qt::Key_Insert);
    key(Qt::Key_Down, Qt::AltModifier);
    key(Qt::Key_O, Qt::ControlModifier);
    key(Qt::Key_Delete, Qt::ControlModifier);
    settle();
    EXPECT_EQ(titles(), QStringList({u"1.mp3"_s, u"2.mp3"_s, u"3.mp3"_s}));
    key(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(button("CommandRemove1").isEnabled()) << "Ctrl+. stops";
}

TEST_F(Keys, SpaceOnTheListPlays) {
    key(Qt::Key_Space);
    EXPECT_FALSE(button("CommandLoad1").isEnabled()) << "as the Play button does";
    press("CommandStop1");
}

TEST_F(Keys, SpaceOnAButtonPressesThatButton) {
    addSongs(2);
    button("CommandRemove1").setFocus();
    key(Qt::Key_Space);
    EXPECT_EQ(list().rowCount(), 1);
    EXPECT_TRUE(button("CommandLoad1").isEnabled()) << "nothing plays";
}

TEST_F(Keys, ATextKeepsItsKeys) {
    addSongs(2);
    find<QLineEdit>(*window, "txtFile_Name").setFocus();
    key(Qt::Key_Delete);
    key(Qt::Key_Space);
    key(Qt::Key_Return);
    EXPECT_EQ(list().rowCount(), 2);
    EXPECT_TRUE(button("CommandLoad1").isEnabled());
}

TEST_F(Keys, CtrlPlusAndMinusSetTheVolume) {
    const auto& volume = find<widgets::SkinSlider>(*window, "SliderVolume1");
    key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(volume.value(), 94);
    key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(volume.value(), 99);
}

TEST_F(Keys, TheFocusIsSeen) {
    for (const char* name : {"CommandLoad1", "CommandPlay1", "Button1", "Slider1", "ListView1"}) {
        QWidget& control = find<QWidget>(*window, name);
        find<QWidget>(*window, "Button12").setFocus();
        settle();
        const QImage without = control.grab().toImage();
        control.setFocus();
        settle();
        EXPECT_NE(control.grab().toImage(), without) << name << " looks the same with the focus";
    }
}
