// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/MoveFile.h"

#include "platform/CopyFile.h"
#include "platform/Paths.h"
#include "platform/RenameFile.h"
#include "platform/SystemError.h"

namespace platform {

void moveFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::string what = "“" + toUtf8(from) + "” could not be moved to “" + toUtf8(to) + "”";
    const std::error_code reason = tryRenameFile(from, to);
    if (!reason) return;
    if (reason != std::errc::cross_device_link) throw systemError(what, reason);
    copyFile(from, to, Existing::Refuse);
    std::error_code failed;
    std::filesystem::remove(from, failed);
    if (failed) throw systemError(what + " without leaving it behind", failed);
}

}  // namespace platform
