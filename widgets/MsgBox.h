// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace widgets {

enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgIcon { None, Information, Question, Exclamation, Critical };
enum class MsgResult { Ok, Cancel, Yes, No };

/// Shows a modal message box over the active window and returns the button pressed; closing the box
/// or Escape counts as Cancel, or as No where there is only Yes and No, or as OK where there is
/// only OK. Text is shown as it stands, never as markup; an empty title means the application's.
/// The box bears the objectName "MsgBox". Window thread only; events of other windows go on.
MsgResult msgBox(const QString& text, MsgButtons buttons = MsgButtons::Ok,
                 MsgIcon icon = MsgIcon::None, const QString& title = QString());

}  // namespace widgets
