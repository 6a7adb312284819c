// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Move.h"

#include <QtGlobal>

#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/Copy.h"
#include "platform/file/File.h"
#include "platform/file/Regular.h"

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace platform::file {

void rename(const fs::path& from, const fs::path& to) {
    std::error_code reason = reasonAgainst(from);
    if (reason != notRegular()) reason = tryRename(from, to);
    if (reason)
        throw systemError("“" + toUtf8(from) + "” could not be renamed to “" + toUtf8(to) + "”",
                          reason);
}

void move(const fs::path& from, const fs::path& to) {
    const std::string what = "“" + toUtf8(from) + "” could not be moved to “" + toUtf8(to) + "”";
    const std::error_code reason = tryRename(from, to);
    if (!reason) return;
    if (reason != std::errc::cross_device_link) throw systemError(what, reason);
    copy(from, to, Existing::Refuse, {}, Sync::Now);
    std::error_code failed;
    fs::remove(from, failed);
    if (failed) throw systemError(what + " without leaving it behind", failed);
}

#ifdef Q_OS_WIN

std::error_code tryRename(const fs::path& from, const fs::path& to) {
    if (from == to) return std::make_error_code(std::errc::file_exists);
    if (MoveFileExW(from.c_str(), to.c_str(), 0)) return {};
    if (GetLastError() == ERROR_NOT_SAME_DEVICE)
        return std::make_error_code(std::errc::cross_device_link);
    return lastSystemError();
}

std::error_code renameOverReservation(const fs::path& from, const fs::path& to) {
    return tryRename(from, to);
}

#else

namespace {

/// Whether the new name is nothing but the old file's own name as a file system sees it that does
/// not tell letter cases apart: it leads to the same file, yet no such entry stands in the folder.
bool isOwnNameInOtherCase(const fs::path& from, const fs::path& to) {
    if (from.filename() == to.filename() || !isSameFile(from, to)) return false;
    std::error_code failed;
    fs::directory_iterator entry(to.has_parent_path() ? to.parent_path() : ".", failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed))
        if (entry->path().filename() == to.filename()) return false;
    return !failed;
}

std::error_code plainRename(const fs::path& from, const fs::path& to) {
    return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : lastSystemError();
}

std::error_code renameUnlessTaken(const fs::path& from, const fs::path& to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
    const std::error_code reason = lastSystemError();
    if (reason != std::errc::invalid_argument && reason != std::errc::function_not_supported &&
        reason != std::errc::operation_not_supported)
        return reason;
#endif
    return renameOverReservation(from, to);
}

}  // namespace

std::error_code tryRename(const fs::path& from, const fs::path& to) {
    const std::error_code reason = renameUnlessTaken(from, to);
    if (reason == std::errc::file_exists && isOwnNameInOtherCase(from, to))
        return plainRename(from, to);
    return reason;
}

std::error_code renameOverReservation(const fs::path& from, const fs::path& to) {
    // Without this, a missing source would leave the reservation's name behind for a moment.
    if (::access(from.c_str(), F_OK) != 0) return lastSystemError();
    const int reserved = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (reserved < 0) return lastSystemError();
    ::close(reserved);
    const std::error_code reason = plainRename(from, to);
    if (reason) ::unlink(to.c_str());
    return reason;
}

#endif

}  // namespace platform::file
