// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace modPath {

/// The folder part of a path, up to and including its last backslash ("C:\\Music\\a.mp3" gives
/// "C:\\Music\\"), of the path without leading and trailing blanks. Empty where there is none. A
/// path that begins with "/" is split at "/" instead.
QString GetPathPart(const QString& path);

/// What follows the folder part. The cut is counted in the path without its leading blanks but made
/// in the path as given, so a path with n leading blanks yields n characters too many; and a path
/// without a folder comes back as given, blanks included.
QString GetFileNamePart(const QString& path);

}  // namespace modPath
