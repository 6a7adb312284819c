// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainControls.h"

#include "effects/engine/Editor.h"
#include "player/engine/PlayerEngine.h"
#include "playlist/PlaylistCommands.h"
#include "playlist/PlaylistFiles.h"
#include "ui_frmMain.h"

namespace app {

void MainControls::stopPlayback() {
    parts_.stopPlayback();
}

// The focus would move on to what stays enabled, so it is put back where it was. The engine draws
// nothing in this window; what is kept is whether it would.
void MainControls::setCommandsEnabled(bool enabled) {
    if (!enabled) focus_ = parts_.window.focusWidget();
    setButtonsEnabled(enabled);
    parts_.setDialogsEnabled(enabled);
    parts_.ui.ListView1->setEnabled(enabled);
    if (enabled && focus_) focus_->setFocus();
    parts_.editor.setProperty("visible", enabled);
}

void MainControls::setButtonsEnabled(bool enabled) {
    const Ui::frmMain& ui = parts_.ui;
    for (QWidget* button :
         {ui.CommandLoad1, ui.CommandSave1, ui.CommandAddSong1, ui.CommandRemove1,
          ui.CommandMoveUp1, ui.CommandMoveDown1, ui.CommandPlay1, ui.CommandPause1,
          ui.CommandStop1, ui.CommandPrev1, ui.CommandNext1, ui.Button1, ui.Button2, ui.Button7,
          ui.CommandRewind1, ui.CommandForward1})
        button->setEnabled(enabled);
}

void MainControls::setFileName(const QString& path) {
    parts_.ui.txtFile_Name->setText(path);
}

QString MainControls::fileName() const {
    return parts_.ui.txtFile_Name->text();
}

void MainControls::replaceFile(const QString& path, const std::function<void()>& work) {
    const player::FileRelease released(parts_.engine, path);
    work();
}

QString MainLoadedList::caption() const {
    return parts_.ui.Label7->text();
}

void MainLoadedList::setCaption(const QString& caption) {
    parts_.ui.Label7->setText(caption);
}

std::int32_t MainLoadedList::saveAsM3u(std::int16_t player, const QString& path) {
    return parts_.engine.PlaylistSave(player, path, player::FormatM3u);
}

void MainLoadedList::replaceBy(const QString& path) {
    parts_.files.LoadInSilence(0, *parts_.ui.ListView1, path);
}

void MainLoadedList::reload() {
    parts_.files.ReloadPlaylist(0, *parts_.ui.ListView1);
}

void MainLoadedList::setTitleCell(int row, const QString& text) {
    parts_.ui.ListView1->setSubItem(row, 2, text);
}

}  // namespace app
