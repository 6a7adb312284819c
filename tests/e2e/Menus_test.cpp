// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QCursor>
#include <QMenu>

#include "tests/support/MainWindow.h"

using namespace Qt::Literals::StringLiterals;
using namespace support;

namespace {

struct Menus : MainWindow {
    void TearDown() override {
        if (openMenu()) openMenu()->close();
        MainWindow::TearDown();
    }
};

bool opened(const QMenu* menu) {
    return waitFor([menu] { return openMenu() == menu && menu->isVisible(); });
}

}  // namespace

TEST_F(Menus, OpenWithAnEmptyListAtTheMouse) {
    for (const auto& [name, menu] : {std::pair("Button1", window->mnuPlaylist_Menu),
                                     std::pair("Button7", window->mnuCDStuff)}) {
        QAbstractButton& opener = button(name);
        const QPoint place = opener.mapToGlobal(QPoint(9, 7));
        QCursor::setPos(place);
        ASSERT_TRUE(waitFor([place] { return QCursor::pos() == place; }));
        press(name);
        ASSERT_TRUE(opened(menu)) << name;
        EXPECT_FALSE(menu->activeAction()) << "no item is preselected";
        const QRect screen = menu->screen()->availableGeometry();
        const bool fits = screen.contains(QRect(place, menu->size()));
        EXPECT_TRUE(!fits || menu->pos() == place);
        EXPECT_TRUE(screen.contains(menu->geometry()));
        QTest::keyClick(menu, Qt::Key_Escape);
        ASSERT_TRUE(waitFor([] { return !openMenu(); }));
    }
}

TEST_F(Menus, OpenBelowTheButtonByKeyboard) {
    QCursor::setPos(window->mapToGlobal(QPoint(1, 1)));
    QAbstractButton& opener = button("Button7");
    opener.setFocus();
    QTest::keyClick(&opener, Qt::Key_Space);
    ASSERT_TRUE(opened(window->mnuCDStuff));
    EXPECT_EQ(window->mnuCDStuff->x(), opener.mapToGlobal(QPoint(0, 0)).x());
}

TEST_F(Menus, AnItemIsChosenByItsMnemonic) {
    addSongs(3);
    button("Button1").setFocus();
    QTest::keyClick(&button("Button1"), Qt::Key_Return);
    ASSERT_TRUE(opened(window->mnuPlaylist_Menu));
    QTest::keyClick(window->mnuPlaylist_Menu, Qt::Key_S);
    ASSERT_TRUE(waitFor([] { return !openMenu(); }));
    EXPECT_EQ(list().selectedRows().size(), 3U);
}

TEST_F(Menus, ShortcutsAreShownInTheMenuAndWork) {
    addSongs(3);
    const QAction& all = find<QAction>(*window, "mnuSelected_All");
    EXPECT_TRUE(all.isShortcutVisibleInContextMenu());
    QTest::keySequence(window.get(), all.shortcut());
    EXPECT_EQ(list().selectedRows().size(), 3U);
    QTest::keySequence(window.get(), find<QAction>(*window, "mnuDeselectAll").shortcut());
    EXPECT_EQ(list().selectedRows().size(), 0U);
}

TEST_F(Menus, ShortcutsOfALockedMenuDoNothing) {
    addSongs(3);
    press("CommandPlay1");
    QTest::keySequence(window.get(), QKeySequence(u"Ctrl+A"_s));
    EXPECT_EQ(list().selectedRows().size(), 1U);
    press("CommandStop1");
}

TEST_F(Menus, SelectAllAndDeselectAllByMouse) {
    addSongs(4);
    chooseFromMenu(*window, "Button1", "mnuSelected_All");
    EXPECT_EQ(list().selectedRows().size(), 4U);
    chooseFromMenu(*window, "Button1", "mnuDeselectAll");
    EXPECT_EQ(list().selectedRows().size(), 0U);
    EXPECT_EQ(list().currentRow(), 1);
}
