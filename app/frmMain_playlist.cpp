// SPDX-License-Identifier: GPL-3.0-or-later
// The playlist's commands: add, remove, move, clear, select, totals, files.
#include "app/frmMain.h"
#include "ui_frmMain.h"
