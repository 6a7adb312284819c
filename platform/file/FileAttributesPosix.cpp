// SPDX-License-Identifier: GPL-3.0-or-later
// What a file is beside its bytes: owner, mode, access lists, extended attributes, times.
#include <cerrno>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

#include "platform/SystemError.h"
#include "platform/file/File.h"

namespace platform::file {
namespace {

bool failed(std::error_code& error) {
    error = lastSystemError();
    return false;
}

// The security and trusted name spaces belong to the system, which labels new files itself.
bool mustBeKept(std::string_view name) {
    return name.starts_with("user.") || name.starts_with("system.posix_acl_");
}

bool copyExtendedAttribute(int from, int to, const char* name) {
    const ssize_t size = ::fgetxattr(from, name, nullptr, 0);
    if (size < 0) return false;
    std::vector<char> value(static_cast<std::size_t>(size));
    const ssize_t got = ::fgetxattr(from, name, value.data(), value.size());
    return got >= 0 && ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(got), 0) == 0;
}

bool copyExtendedAttributes(int from, int to, std::error_code& error) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0) return size == 0 || errno == ENOTSUP || failed(error);
    std::vector<char> names(static_cast<std::size_t>(size));
    const ssize_t got = ::flistxattr(from, names.data(), names.size());
    if (got < 0) return failed(error);
    const std::string_view all(names.data(), static_cast<std::size_t>(got));
    for (std::size_t start = 0; start < all.size();) {
        const std::string name(all.data() + start);
        start += name.size() + 1;
        if (!copyExtendedAttribute(from, to, name.c_str()) && mustBeKept(name))
            return failed(error);
    }
    return true;
}

bool mayNotBeGiven(int reason) {
    return reason == EPERM || reason == EINVAL || reason == ENOSYS;
}

// Only root gives files away, and a user only to a group of his own. A file in a shared folder is
// saved all the same: its owner then is who saved it, as with every program that replaces files.
bool copyOwner(int to, const struct stat& wanted, std::error_code& error) {
    struct stat present {};
    if (::fstat(to, &present) != 0) return failed(error);
    if (wanted.st_uid == present.st_uid && wanted.st_gid == present.st_gid) return true;
    if (::fchown(to, wanted.st_uid, wanted.st_gid) == 0) return true;
    if (!mayNotBeGiven(errno)) return failed(error);
    if (wanted.st_gid == present.st_gid ||
        ::fchown(to, static_cast<uid_t>(-1), wanted.st_gid) == 0 || mayNotBeGiven(errno))
        return true;
    return failed(error);
}

// Rights that were another group's are not handed to this one, nor a program's to act as somebody.
mode_t modeFor(const struct stat& wanted, const struct stat& present) {
    mode_t mode = wanted.st_mode & 07777;
    if (wanted.st_uid != present.st_uid) mode &= ~mode_t{S_ISUID};
    if (wanted.st_gid == present.st_gid) return mode;
    const mode_t others = mode & S_IRWXO;
    return (mode & ~mode_t{S_ISGID | S_IRWXG}) | (mode & (others << 3));
}

bool copyOwnerAndMode(int from, int to, std::error_code& error) {
    struct stat wanted {};
    struct stat present {};
    if (::fstat(from, &wanted) != 0) return failed(error);
    if (!copyOwner(to, wanted, error)) return false;
    if (::fstat(to, &present) != 0) return failed(error);
    return ::fchmod(to, modeFor(wanted, present)) == 0 || failed(error);
}

}  // namespace

bool File::copyAttributesOf(const std::filesystem::path& other, std::error_code& error) {
    File source;
    if (!source.openForReading(other, error)) return false;
    const int from = static_cast<int>(source.handle_);
    const int to = static_cast<int>(handle_);
    return copyOwnerAndMode(from, to, error) && copyExtendedAttributes(from, to, error);
}

// The rights that a new file got tell which ones its user withholds. Not every file system holds
// modes and times (FAT has neither, a share may refuse both): the copy is whole without them.
void File::copyModeAndTimesOf(const File& other) {
    struct stat wanted {};
    struct stat present {};
    const int to = static_cast<int>(handle_);
    if (::fstat(static_cast<int>(other.handle_), &wanted) != 0 || ::fstat(to, &present) != 0)
        return;
    const mode_t granted = (present.st_mode & 0666) | ((present.st_mode & 0444) >> 2);
    (void)::fchmod(to, wanted.st_mode & granted);
    const timespec times[] = {wanted.st_atim, wanted.st_mtim};
    (void)::futimens(to, times);
}

}  // namespace platform::file
