// SPDX-License-Identifier: GPL-3.0-or-later
// The two pop-up menus of the main window.
#include <QActionGroup>
#include <QCursor>
#include <QEvent>
#include <QMenu>

#include "app/frmMain.h"
#include "playlist/DiskQueue.h"
#include "ui_frmMain.h"

using namespace Qt::Literals::StringLiterals;

namespace app {
namespace {

QMenu* popUpMenu(QWidget* owner, const QString& name, const QString& caption, QActionGroup* items) {
    auto* menu = new QMenu(caption, owner);
    menu->setObjectName(name);
    menu->setAccessibleName(caption);
    menu->setToolTipsVisible(true);
    for (QAction* item : items->actions()) {
        item->setShortcutVisibleInContextMenu(true);
        menu->addAction(item);
    }
    return menu;
}

QActionGroup* group(QObject* owner, std::initializer_list<QAction*> items) {
    auto* made = new QActionGroup(owner);
    made->setExclusionPolicy(QActionGroup::ExclusionPolicy::None);
    for (QAction* item : items) made->addAction(item);
    return made;
}

}  // namespace

void frmMain::buildMenus() {
    playlistMenuItems_ = group(
        this, {ui_->mnu2MP3Player, ui_->mnu_copy2folder, ui_->mnuDeselectAll, ui_->mnuSelected_All,
               ui_->mnuEdit_IDTags_selected, ui_->mnuEffects_Selected, ui_->mnuTest,
               ui_->mnuAdd_Silence_end, ui_->mnuSilence2Frt, ui_->mnuAmpMinus_Selected,
               ui_->mnuAmpPlus_Selected, ui_->mnuEch_Selected, ui_->mnuAutoFade_Selected,
               ui_->mnuFadeIn_selected, ui_->mnuFadeOut_selected, ui_->mnuTrim_Silence,
               ui_->mnuNormalize_selected, ui_->mnuOpen_in_Editor, ui_->mnuRename});
    burnMenuItems_ =
        group(this, {ui_->mnuAudio_CDWriter, ui_->mnuData_CDWriter, ui_->mnuCrossFader});
    mnuPlaylist_Menu =
        popUpMenu(this, u"mnuPlaylist_Menu"_s, u"Playlist_Menu"_s, playlistMenuItems_);
    mnuCDStuff = popUpMenu(this, u"mnuCDStuff"_s, u"CDStuff"_s, burnMenuItems_);
    ui_->Button1->installEventFilter(this);
    ui_->Button7->installEventFilter(this);
    ui_->CommandAddSong1->installEventFilter(this);
    ui_->Label5->installEventFilter(this);
}

// While a button is disabled, what else leads to its commands must be closed too: the shortcuts of
// a menu's items, dropping files, and files that a slow disk brings only now.
void frmMain::followButton(const QWidget* button) {
    if (button == ui_->Button1) playlistMenuItems_->setEnabled(button->isEnabled());
    if (button == ui_->Button7) burnMenuItems_->setEnabled(button->isEnabled());
    if (button != ui_->CommandAddSong1) return;
    ui_->ListView1->setAcceptDrops(button->isEnabled());
    disk_->setHeld(!button->isEnabled());
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::EnabledChange) followButton(qobject_cast<QWidget*>(watched));
    if (watched == ui_->Label5 && event->type() == QEvent::MouseButtonRelease) Label5_Click();
    return QWidget::eventFilter(watched, event);
}

// At the mouse; where the button was pressed by the keyboard, below the button.
void frmMain::popUpAt(QMenu* menu, const QWidget* button) {
    const bool byMouse = button->rect().contains(button->mapFromGlobal(QCursor::pos()));
    menu->popup(byMouse ? QCursor::pos() : button->mapToGlobal(QPoint(0, button->height())));
}

void frmMain::Button1_Click() {
    popUpAt(mnuPlaylist_Menu, ui_->Button1);
}

void frmMain::Button7_Click() {
    popUpAt(mnuCDStuff, ui_->Button7);
}

// A click on the status line has no effect.
void frmMain::Label5_Click() {}

}  // namespace app
