// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace wizard {

/// Shows the program's about window, "frmAbout", over its owner and returns at once; it deletes
/// itself when it is closed.
void showAbout(QWidget* owner);

}  // namespace wizard
