// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/PickedFolder.h"

#include <QDir>
#include <QStorageInfo>

#include "platform/Paths.h"

namespace handoff {

QString pickedFolder(const QString& path) {
    if (path.isEmpty()) return {};
    const QString clean = QDir::cleanPath(path);
    const QString root = QStorageInfo(clean).rootPath();  // none of a name that is no UTF-8
    const bool isDriveRoot = !root.isEmpty() && root == QFileInfo(clean).canonicalFilePath();
    const QString native = QDir::toNativeSeparators(clean);
    return isDriveRoot && !native.endsWith(platform::nativeSeparator())
               ? native + platform::nativeSeparator()
               : native;
}

}  // namespace handoff
