// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

// What this program is called, and which version of it this is. Any thread.
QString programName();     ///< as the system knows it: "tracksmith"
QString programTitle();    ///< as people know it: "Tracksmith"
QString programVersion();  ///< "5.8"

}  // namespace platform
