// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AbsolutePath.h"

#include <filesystem>
#include <system_error>

#include "platform/Paths.h"

namespace platform {

QString absolutePath(const QString& path) {
    std::error_code unknown;
    const std::filesystem::path whole = std::filesystem::absolute(toPath(path), unknown);
    return unknown ? path : toQString(whole.lexically_normal().make_preferred());
}

}  // namespace platform
