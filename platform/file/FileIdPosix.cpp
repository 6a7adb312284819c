// SPDX-License-Identifier: GPL-3.0-or-later
// Which file a file is, on POSIX systems.
#include <algorithm>
#include <array>
#include <sys/stat.h>

#include <QtGlobal>
#ifdef Q_OS_LINUX
#include <sys/vfs.h>
#endif

#include "platform/SystemError.h"
#include "platform/file/File.h"

namespace platform::file {
namespace {

#ifdef Q_OS_LINUX
// FAT, exFAT, FUSE, SMB, SMB 2, 9P (statfs(2), linux/magic.h): they make inode numbers up as they
// go, and a file that was forgotten meanwhile comes back under another one.
bool keepsNumbers(const struct statfs& system) {
    static constexpr std::array<std::uint32_t, 6> forgetful{0x4D44,     0x2011BAB0, 0x65735546,
                                                            0xFF534D42, 0xFE534D42, 0x01021997};
    return std::ranges::find(forgetful, static_cast<std::uint32_t>(system.f_type)) ==
           forgetful.end();
}

bool keepsNumbers(int file) {
    struct statfs system {};
    return ::fstatfs(file, &system) == 0 && keepsNumbers(system);
}

bool keepsNumbers(const std::filesystem::path& path) {
    struct statfs system {};
    return ::statfs(path.c_str(), &system) == 0 && keepsNumbers(system);
}
#else
template <typename File>
bool keepsNumbers(const File&) {
    return true;
}
#endif

FileId idOf(const struct stat& about) {
    return {about.st_dev, about.st_ino};
}

Stamp stampFrom(const struct stat& about, bool withNumber) {
    FileId id = idOf(about);
    if (!withNumber) id.number = 0;
    return {id, about.st_size,
            std::int64_t{about.st_mtim.tv_sec} * 1'000'000'000 + about.st_mtim.tv_nsec};
}

}  // namespace

std::optional<FileId> idOf(const std::filesystem::path& path) {
    struct stat about {};
    if (::stat(path.c_str(), &about) != 0) return {};
    return idOf(about);
}

std::optional<Stamp> stampOf(const std::filesystem::path& path, std::error_code& error) {
    struct stat about {};
    if (::stat(path.c_str(), &about) == 0) return stampFrom(about, keepsNumbers(path));
    error = lastSystemError();
    return {};
}

std::optional<Stamp> File::stamp(std::error_code& error) const {
    struct stat about {};
    const int file = static_cast<int>(handle_);
    if (::fstat(file, &about) == 0) return stampFrom(about, keepsNumbers(file));
    error = lastSystemError();
    return {};
}

}  // namespace platform::file
