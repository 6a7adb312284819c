// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Gui.h"

#include <QAction>
#include <QApplication>
#include <QMenu>

namespace support {

bool waitFor(const std::function<bool()>& condition, int milliseconds) {
    return QTest::qWaitFor(condition, milliseconds);
}

void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool waitForDisk(const QObject& window) {
    const auto* queue = window.findChild<QObject*>(QStringLiteral("DiskQueue"));
    return queue && waitFor([queue] { return !queue->property("busy").toBool(); });
}

bool activate(QWidget& window) {
    window.show();
    window.raise();
    // Asked for again and again: a window manager that is only just starting hears nothing.
    const bool active = QTest::qWaitForWindowExposed(&window, patience) && waitFor([&window] {
                            if (!window.isActiveWindow()) window.activateWindow();
                            return window.isActiveWindow();
                        });
    EXPECT_TRUE(active) << "the window did not become active";
    return active;
}

void click(QWidget& control) {
    const std::string name = control.objectName().toStdString();
    ASSERT_TRUE(control.isVisible()) << name << " is not visible";
    ASSERT_TRUE(control.isEnabled()) << name << " is not enabled";
    QTest::mouseClick(&control, Qt::LeftButton, Qt::NoModifier, control.rect().center());
}

void click(const QObject& root, const char* name) {
    click(find<QWidget>(root, name));
}

void type(QWidget& control, const QString& text) {
    control.setFocus();
    ASSERT_TRUE(waitFor([&control] { return control.hasFocus(); }));
    QTest::keyClicks(&control, text);
}

QMenu* openMenu() {
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

void chooseFromMenu(const QObject& root, const char* button, const char* item) {
    QAction& action = find<QAction>(root, item);
    click(root, button);
    ASSERT_TRUE(waitFor([] { return openMenu() && openMenu()->isVisible(); }))
        << button << " opened no menu";
    QMenu* menu = openMenu();
    ASSERT_TRUE(menu->actions().contains(&action)) << item << " is not in the menu of " << button;
    ASSERT_TRUE(action.isEnabled() && action.isVisible()) << item << " cannot be chosen";
    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(&action).center());
}

QWidget* openWindow(const char* name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->objectName() == QLatin1String(name)) return window;
    }
    return nullptr;
}

}  // namespace support
