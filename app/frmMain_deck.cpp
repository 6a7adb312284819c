// SPDX-License-Identifier: GPL-3.0-or-later
// The player deck: transport, sliders, position, engine events.
#include "app/frmMain.h"
#include "ui_frmMain.h"
