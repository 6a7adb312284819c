// SPDX-License-Identifier: GPL-3.0-or-later
// Copying, renaming, and the companion programs.
#include "app/HandoffHost.h"
#include "app/frmMain.h"
#include "handoff/CopyCommands.h"
#include "handoff/Handoffs.h"
#include "handoff/RenameCommand.h"
#include "ui_frmMain.h"

namespace app {

void frmMain::mnu_copy2folder_Click() {
    handoff::copyToProjectFolder(*handoff_);
}

void frmMain::mnu2MP3Player_Click() {
    handoff::copyToPlayer(*handoff_);
}

void frmMain::mnuRename_Click() {
    handoff::renameSelectedFiles(*handoff_);
}

void frmMain::mnuEdit_IDTags_selected_Click() {
    handoff::TagHandoff(*handoff_);
}

void frmMain::mnuOpen_in_Editor_Click() {
    handoff::openInEditor(*handoff_);
}

void frmMain::mnuAudio_CDWriter_Click() {
    handoff::audioCdWriter(*handoff_);
}

void frmMain::mnuData_CDWriter_Click() {
    handoff::dataCdWriter();
}

}  // namespace app
