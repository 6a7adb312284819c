// SPDX-License-Identifier: GPL-3.0-or-later
// The way into the cross-fade wizard.
#include "app/frmMain.h"
#include "ui_frmMain.h"
