// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Naming.h"

#include "platform/Paths.h"

namespace wizard {

QString bareName(const QString& path) {
    return path.mid(path.lastIndexOf(platform::nativeSeparator()) + 1);
}

QString outputStem(const QString& path) {
    return bareName(path).chopped(qMin(qsizetype{3}, bareName(path).size()));
}

QString headFile(const QString& targetPath, int index, const QString& entryPath) {
    return targetPath + QString::number(index) + u'_' + bareName(entryPath);
}

}  // namespace wizard
