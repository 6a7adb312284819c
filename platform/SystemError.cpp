// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SystemError.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#endif

namespace platform {

std::error_code lastSystemError() {
#ifdef Q_OS_WIN
    return {static_cast<int>(GetLastError()), std::system_category()};
#else
    return {errno, std::generic_category()};
#endif
}

}  // namespace platform
