// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace handoff {

/// A folder as a person picked it, in the form commands get it: native separators, and a trailing
/// one only at the root of a drive. Where there are no drive letters, that is the root of any
/// mounted file system. Empty for an empty text.
QString pickedFolder(const QString& path);

}  // namespace handoff
