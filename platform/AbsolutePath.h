// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// A path, from the current folder on where it is relative, without "." and "..", with native
/// separators. The file need not exist; whatever bytes its name has, they stay. Any thread.
QString absolutePath(const QString& path);

}  // namespace platform
