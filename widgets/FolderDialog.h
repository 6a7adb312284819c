// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

namespace widgets {

/// Lets the user pick an existing folder. Returns its path with native separators (a root ends in
/// one, other folders do not), or an empty text when cancelled. The dialog bears the objectName
/// "FolderDialog". Without an owner it belongs to the active window. Window thread only.
QString pickFolder(QWidget* owner, const QString& prompt);

}  // namespace widgets
