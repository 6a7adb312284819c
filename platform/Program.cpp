// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Program.h"

namespace platform {

QString programName() {
    return QStringLiteral("tracksmith");
}

QString programTitle() {
    return QStringLiteral("Tracksmith");
}

// The build knows it: see project() in the CMakeLists.txt at the top.
QString programVersion() {
    return QStringLiteral(TRACKSMITH_VERSION);
}

}  // namespace platform
