// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

namespace handoff {

/// Asks for a folder of the file system under the given prompt. Returns its native path, without a
/// trailing separator except at the root of a drive, or an empty text when the user cancels.
/// What stands at the root of a drive here is the root of any mounted file system: a portable
/// player shows up as one.
QString BrowseForFolder(QWidget* owner, const QString& prompt);

}  // namespace handoff
