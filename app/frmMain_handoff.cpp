// SPDX-License-Identifier: GPL-3.0-or-later
// Copying, renaming, and the companion programs.
#include "app/frmMain.h"
#include "ui_frmMain.h"
