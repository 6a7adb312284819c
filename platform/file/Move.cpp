// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Move.h"

#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/Copy.h"
#include "platform/file/Rename.h"

namespace platform::file {

void move(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::string what = "“" + toUtf8(from) + "” could not be moved to “" + toUtf8(to) + "”";
    const std::error_code reason = tryRename(from, to);
    if (!reason) return;
    if (reason != std::errc::cross_device_link) throw systemError(what, reason);
    copy(from, to, Existing::Refuse);
    std::error_code failed;
    std::filesystem::remove(from, failed);
    if (failed) throw systemError(what + " without leaving it behind", failed);
}

}  // namespace platform::file
