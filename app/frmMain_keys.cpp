// SPDX-License-Identifier: GPL-3.0-or-later
// What the keyboard does in the main window beyond its buttons and menus. Every shortcut presses a
// button, so that a disabled button's shortcut does nothing either.
#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>

#include "app/frmMain.h"
#include "app/mediakeys/MediaKeys.h"
#include "player/deck/Deck.h"
#include "ui_frmMain.h"
#include "widgets/Dispatch.h"
#include "widgets/ListView.h"

using namespace Qt::Literals::StringLiterals;

namespace app {

void frmMain::connectShortcuts() {
    const std::pair<QString, QAbstractButton*> shortcuts[] = {
        {u"Ctrl+O"_s, ui_->CommandLoad1},
        {u"Ctrl+S"_s, ui_->CommandSave1},
        {u"Ctrl+Shift+O"_s, ui_->CommandAddSong1},
        {u"Ctrl+Delete"_s, ui_->Button2},
        {u"Alt+Up"_s, ui_->CommandMoveUp1},
        {u"Alt+Down"_s, ui_->CommandMoveDown1},
        {u"Alt+O"_s, ui_->Button1},
        {u"Alt+B"_s, ui_->Button7},
        {u"Ctrl+."_s, ui_->CommandStop1},
        {u"Ctrl+Left"_s, ui_->CommandRewind1},
        {u"Ctrl+Right"_s, ui_->CommandForward1},
        {u"Ctrl+Up"_s, ui_->CommandPrev1},
        {u"Ctrl+Down"_s, ui_->CommandNext1}};
    for (const auto& [keys, button] : shortcuts) {
        connect(new QShortcut(QKeySequence(keys), this), &QShortcut::activated, button,
                &QAbstractButton::click);
    }
    const auto volume = [this](const QString& keys, int step) {
        connect(new QShortcut(QKeySequence(keys), this), &QShortcut::activated, this,
                widgets::guarded([slider = ui_->SliderVolume1, step] {
                    slider->setValue(slider->value() + step);
                }));
    };
    volume(u"Ctrl++"_s, 5);
    volume(u"Ctrl+="_s, 5);
    volume(u"Ctrl+-"_s, -5);
}

void frmMain::connectMediaKeys() {
    mediaKeys_ =
        attachMediaKeys({*this, *PlayerEngine1, *deck_, *ui_->CommandPlay1, *ui_->CommandPause1,
                         *ui_->CommandStop1, *ui_->CommandNext1, *ui_->CommandPrev1, *ui_->Slider1,
                         *ui_->SliderVolume1, [this](const QString& path) { openAndPlay(path); }});
}

// A file comes behind the others, a list in their place.
void frmMain::openAndPlay(const QString& path) {
    if (deck_->locked()) ui_->CommandStop1->click();
    const int before = ui_->ListView1->rowCount();
    openPaths({path}, [this, before] { playOpened(before); });
}

void frmMain::playOpened(int rowsBefore) {
    const int rows = ui_->ListView1->rowCount();
    if (rows == 0) return;
    ui_->ListView1->selectRow(rows > rowsBefore ? rows : 1);
    ui_->CommandPlay1->click();
}

// Only keys that the control with the focus had no use for come here: a space pressed on a button
// stays there. A text keeps all its keys, also those that it ignores because it is read-only.
void frmMain::keyPressEvent(QKeyEvent* event) {
    const bool inText = qobject_cast<QLineEdit*>(focusWidget()) != nullptr;
    const auto beyondKeypad = event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    if (inText || beyondKeypad) return QWidget::keyPressEvent(event);
    switch (event->key()) {
        case Qt::Key_Space:
            return (deck_->idle() ? ui_->CommandPlay1 : ui_->CommandPause1)->click();
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return ui_->CommandPlay1->click();
        case Qt::Key_Delete:
            return ui_->CommandRemove1->click();
        case Qt::Key_Insert:
            return ui_->CommandAddSong1->click();
        default:
            return QWidget::keyPressEvent(event);
    }
}

}  // namespace app
