// SPDX-License-Identifier: GPL-3.0-or-later
// Effects on the selected files, and the editor engine's save step.
#include "app/frmMain.h"
#include "ui_frmMain.h"
