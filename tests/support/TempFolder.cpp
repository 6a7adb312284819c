// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TempFolder.h"

#include <QDir>
#include <QTemporaryDir>

#include "platform/Paths.h"

namespace support {

TempFolder::TempFolder() {
    QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/ts-XXXXXX"));
    folder.setAutoRemove(false);
    path_ = platform::toPath(folder.path());
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

QString TempFolder::file(const QString& name) const {
    return platform::toQString(path_) + QLatin1Char('/') + name;
}

}  // namespace support
