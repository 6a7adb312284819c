// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace widgets {

/// Asks for one line of text over the active window. Returns what was typed, or an empty text when
/// the box was cancelled. The box bears the objectName "InputBox". Window thread only.
QString inputBox(const QString& prompt, const QString& title,
                 const QString& defaultText = QString());

}  // namespace widgets
