// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

class QMenu;

/// Works real windows with mouse and keyboard. Every call waits for its condition and fails the
/// test in hand, with a sentence, when it does not come true.
namespace support {

inline constexpr int patience = 30000;  ///< milliseconds; the machine may be loaded

/// Handles events until the condition holds; false after `milliseconds`.
bool waitFor(const std::function<bool()>& condition, int milliseconds = patience);

/// Handles the events that are pending now.
void settle();

/// Waits until a main window has shown what it was to fetch from the disk.
bool waitForDisk(const QObject& window);

/// Shows and activates a window, and waits until it is exposed and active.
bool activate(QWidget& window);

/// The control or menu item of this name, wherever it lies below `root`; a failure where there is
/// none. Ends the test by exception then, for nothing after it makes sense.
template <class T = QWidget>
T& find(const QObject& root, const char* name) {
    T* found = root.findChild<T*>(QString::fromLatin1(name));
    if (!found) throw std::runtime_error(std::string("no control named ") + name);
    return *found;
}

/// A click of the left button in the middle of the control, which must be visible and enabled.
void click(QWidget& control);
void click(const QObject& root, const char* name);

/// Types into the control after giving it the focus.
void type(QWidget& control, const QString& text);

/// Presses the button, waits for the menu it opens, and clicks the item in it. The menu must hold
/// the item, visible and enabled.
void chooseFromMenu(const QObject& root, const char* button, const char* item);

/// The menu on screen now, or nullptr.
QMenu* openMenu();

/// Top-level window of this objectName that is visible now, or nullptr.
QWidget* openWindow(const char* name);

}  // namespace support
