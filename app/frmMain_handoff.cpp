// SPDX-License-Identifier: GPL-3.0-or-later
// Copying, renaming, and the companion programs.
#include "app/MainControls.h"
#include "app/MainPorts.h"
#include "app/frmMain.h"
#include "handoff/FileCommands.h"
#include "handoff/Handoffs.h"
#include "ui_frmMain.h"

namespace app {

void frmMain::mnu_copy2folder_Click() {
    handoff::copyToProjectFolder(ports_->all(), *loaded_);
}

void frmMain::mnu2MP3Player_Click() {
    handoff::copyToPlayer(ports_->all());
}

void frmMain::mnuRename_Click() {
    handoff::renameSelectedFiles(ports_->all(), *loaded_);
}

void frmMain::mnuEdit_IDTags_selected_Click() {
    handoff::TagHandoff(ports_->all());
}

void frmMain::mnuOpen_in_Editor_Click() {
    handoff::openInEditor(ports_->list);
}

void frmMain::mnuAudio_CDWriter_Click() {
    handoff::audioCdWriter(ports_->boxes, *loaded_, TotalMinutes);
}

void frmMain::mnuData_CDWriter_Click() {
    handoff::dataCdWriter();
}

}  // namespace app
