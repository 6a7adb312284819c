// SPDX-License-Identifier: GPL-3.0-or-later
// The POSIX half of File; identity, attributes and copying have files of their own.
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

#include <QtGlobal>

#include "platform/SystemError.h"
#include "platform/file/File.h"
#include "platform/file/Regular.h"

namespace platform::file {
namespace {

bool failed(std::error_code& error) {
    error = lastSystemError();
    return false;
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

}  // namespace

bool File::openForReading(const std::filesystem::path& path, std::error_code& error) {
    close();
    // Asked first: opening a pipe waits for its other end.
    error = reasonAgainst(path);
    if (error) return false;
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
    error = reasonAgainst(path);
    if (error == notRegular()) return false;
    error.clear();
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

std::optional<std::size_t> File::readSome(std::int64_t position, std::span<std::byte> bytes,
                                          std::error_code& error) const {
    for (;;) {
        const ssize_t got =
            ::pread(static_cast<int>(handle_), bytes.data(), bytes.size(), position);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno == EINTR) continue;
        failed(error);
        return {};
    }
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

bool File::sync(std::error_code& error) {
    return ::fsync(static_cast<int>(handle_)) == 0 || failed(error);
}

bool File::replace(const std::filesystem::path& from, const std::filesystem::path& to,
                   std::error_code& error) {
    return ::rename(from.c_str(), to.c_str()) == 0 || failed(error);
}

void syncFolder(const std::filesystem::path& folder) {
    const char* const name = folder.empty() ? "." : folder.c_str();
    const int opened = ::open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return;
    ::fsync(opened);
    ::close(opened);
}

bool isWritable(const std::filesystem::path& path) {
    return ::access(path.c_str(), W_OK) == 0;
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
