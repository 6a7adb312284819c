// SPDX-License-Identifier: GPL-3.0-or-later
// The POSIX half of File.
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

#include <QtGlobal>
#ifdef Q_OS_LINUX
#include <linux/fs.h>
#endif

#include "platform/SystemError.h"
#include "platform/file/File.h"

namespace platform::file {
namespace {

bool failed(std::error_code& error) {
    error = lastSystemError();
    return false;
}

bool endedTooEarly(std::error_code& error) {
    error = std::make_error_code(std::errc::io_error);
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

// An owner that cannot be kept is an error, not a file that silently changes hands.
bool copyOwnerAndMode(int from, int to, std::error_code& error) {
    struct stat wanted {};
    struct stat present {};
    if (::fstat(from, &wanted) != 0 || ::fstat(to, &present) != 0) return failed(error);
    if ((wanted.st_uid != present.st_uid || wanted.st_gid != present.st_gid) &&
        ::fchown(to, wanted.st_uid, wanted.st_gid) != 0)
        return failed(error);
    return ::fchmod(to, wanted.st_mode & 07777) == 0 || failed(error);
}

/// A stretch of one file and where it goes in another.
struct Stretch {
    std::int64_t offset = 0;
    std::int64_t position = 0;
    std::int64_t size = 0;
};

/// The whole blocks inside a stretch; empty where blocks of the two files do not lie alike.
Stretch wholeBlocks(const Stretch& all, int file) {
    struct stat about {};
    if (::fstat(file, &about) != 0 || about.st_blksize <= 0) return {};
    const std::int64_t block = about.st_blksize;
    if ((all.offset - all.position) % block != 0) return {};
    const std::int64_t skipped = (block - all.offset % block) % block;
    const std::int64_t size = (all.size - skipped) / block * block;
    if (size <= 0) return {};
    return {all.offset + skipped, all.position + skipped, size};
}

bool shareBlocks(int from, int to, const Stretch& stretch) {
#ifdef FICLONERANGE
    if (stretch.size == 0) return false;
    file_clone_range range{};
    range.src_fd = from;
    range.src_offset = static_cast<std::uint64_t>(stretch.offset);
    range.src_length = static_cast<std::uint64_t>(stretch.size);
    range.dest_offset = static_cast<std::uint64_t>(stretch.position);
    return ::ioctl(to, FICLONERANGE, &range) == 0;
#else
    return false;
#endif
}

// One byte far behind any sound: on network file systems, where locks are mandatory, nobody who
// writes to the file meets it. The lock goes with the handle, also when the process is killed.
bool lock(int file) {
    struct flock place {};
    place.l_type = F_WRLCK;
    place.l_whence = SEEK_SET;
    place.l_start = std::numeric_limits<off_t>::max() - 1;
    place.l_len = 1;
    return ::fcntl(file, F_OFD_SETLK, &place) == 0;
}

// False where removeUnheld() was quicker. Where the file system knows no locks it never removes.
bool hold(int file, const std::filesystem::path& path) {
    if (!lock(file) && errno == EAGAIN) return false;
    struct stat about {};
    return ::lstat(path.c_str(), &about) == 0 || errno != ENOENT;
}

bool copyByHand(int from, int to, Stretch left, std::error_code& error) {
    std::vector<std::byte> buffer(std::size_t{1} << 20);
    while (left.size > 0) {
        const auto count = static_cast<std::size_t>(
            std::min<std::int64_t>(left.size, static_cast<std::int64_t>(buffer.size())));
        const ssize_t got = ::pread(from, buffer.data(), count, left.offset);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failed(error);
        if (got == 0) return endedTooEarly(error);
        for (ssize_t done = 0; done < got;) {
            const ssize_t put =
                ::pwrite(to, buffer.data() + done, static_cast<std::size_t>(got - done),
                         left.position + done);
            if (put < 0 && errno != EINTR) return failed(error);
            done += std::max<ssize_t>(put, 0);
        }
        left = {left.offset + got, left.position + got, left.size - got};
    }
    return true;
}

bool copyInside(int from, int to, Stretch left, std::error_code& error) {
    while (left.size > 0) {
        off_t in = left.offset;
        off_t out = left.position;
        const auto count =
            static_cast<std::size_t>(std::min<std::int64_t>(left.size, std::int64_t{64} << 20));
        const ssize_t done = ::copy_file_range(from, &in, to, &out, count, 0);
        if (done < 0 && errno == EINTR) continue;
        if (done < 0 && (errno == ENOSPC || errno == EIO || errno == EFBIG || errno == EDQUOT))
            return failed(error);
        // Across file systems, or where the system does not know the call.
        if (done < 0) return copyByHand(from, to, left, error);
        if (done == 0) return endedTooEarly(error);
        left = {left.offset + done, left.position + done, left.size - done};
    }
    return true;
}

}  // namespace

bool File::openForReading(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    return handle_ >= 0 || failed(error);
}

bool File::createNew(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (handle_ < 0) return failed(error);
    if (hold(static_cast<int>(handle_), path)) return true;
    close();
    error = std::make_error_code(std::errc::file_exists);
    return false;
}

bool File::openForWriting(const std::filesystem::path& path, std::error_code& error) {
    close();
    handle_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    return handle_ >= 0 || failed(error);
}

void File::close() {
    if (handle_ >= 0) ::close(static_cast<int>(handle_));
    handle_ = -1;
    waiting_ = 0;
}

// Sets the disk to work on what has been written so far, so that sync() finds most of it done.
void File::wrote(std::int64_t bytes) {
    constexpr std::int64_t enough = std::int64_t{8} << 20;
    waiting_ += bytes;
    if (waiting_ < enough) return;
    waiting_ = 0;
#ifdef Q_OS_LINUX
    ::sync_file_range(static_cast<int>(handle_), 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
}

bool File::readAt(std::int64_t position, std::span<std::byte> bytes, std::error_code& error) const {
    while (!bytes.empty()) {
        const ssize_t got =
            ::pread(static_cast<int>(handle_), bytes.data(), bytes.size(), position);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failed(error);
        if (got == 0) return endedTooEarly(error);
        bytes = bytes.subspan(static_cast<std::size_t>(got));
        position += got;
    }
    return true;
}

bool File::writeAt(std::int64_t position, std::span<const std::byte> bytes,
                   std::error_code& error) {
    while (!bytes.empty()) {
        const ssize_t put =
            ::pwrite(static_cast<int>(handle_), bytes.data(), bytes.size(), position);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return failed(error);
        bytes = bytes.subspan(static_cast<std::size_t>(put));
        position += put;
        wrote(put);
    }
    return true;
}

bool File::resize(std::int64_t size, std::error_code& error) {
    return ::ftruncate(static_cast<int>(handle_), size) == 0 || failed(error);
}

bool File::copyFrom(const File& source, std::int64_t offset, std::int64_t size,
                    std::int64_t position, std::error_code& error) {
    const int from = static_cast<int>(source.handle_);
    const int to = static_cast<int>(handle_);
    const Stretch blocks = wholeBlocks({offset, position, size}, to);
    if (!shareBlocks(from, to, blocks)) {
        if (!copyInside(from, to, {offset, position, size}, error)) return false;
        wrote(size);
        return true;
    }
    const std::int64_t ahead = blocks.offset - offset;
    const std::int64_t done = ahead + blocks.size;
    return copyInside(from, to, {offset, position, ahead}, error) &&
           copyInside(from, to, {offset + done, position + done, size - done}, error);
}

bool File::copyAttributesOf(const std::filesystem::path& other, std::error_code& error) {
    File source;
    if (!source.openForReading(other, error)) return false;
    const int from = static_cast<int>(source.handle_);
    const int to = static_cast<int>(handle_);
    return copyOwnerAndMode(from, to, error) && copyExtendedAttributes(from, to, error);
}

bool File::sync(std::error_code& error) {
    return ::fsync(static_cast<int>(handle_)) == 0 || failed(error);
}

bool isWritable(const std::filesystem::path& path) {
    return ::access(path.c_str(), W_OK) == 0;
}

// Closed last: until the file has its new name, removeUnheld() must find it held.
bool File::replace(const std::filesystem::path& from, const std::filesystem::path& to,
                   std::error_code& error) {
    if (::rename(from.c_str(), to.c_str()) != 0) return failed(error);
    // The new file is in its place already; a folder that cannot be synced changes nothing there.
    const int folder = ::open(to.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    close();
    return true;
}

void removeUnheld(const std::filesystem::path& path) {
    const int file = ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return;
    struct stat opened {};
    struct stat named {};
    const bool ours = ::fstat(file, &opened) == 0 && S_ISREG(opened.st_mode) &&
                      opened.st_uid == ::geteuid() && opened.st_nlink == 1;
    if (ours && lock(file) && ::lstat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino)
        ::unlink(path.c_str());
    ::close(file);
}

}  // namespace platform::file
