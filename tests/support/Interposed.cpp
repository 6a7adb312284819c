// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Interposed.h"

#include <cstdio>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace support {

Interposed interposed;

namespace {

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

int systemRename(const char* from, const char* to) {
    return next<int(const char*, const char*)>("rename")(from, to);
}

int systemFsync(int file) {
    return next<int(int)>("fsync")(file);
}

ssize_t systemPwrite(int file, const void* bytes, size_t count, off_t at) {
    return next<ssize_t(int, const void*, size_t, off_t)>("pwrite")(file, bytes, count, at);
}

ssize_t systemCopyFileRange(int from, off_t* in, int to, off_t* out, size_t count) {
    return next<ssize_t(int, off_t*, int, off_t*, size_t, unsigned)>("copy_file_range")(
        from, in, to, out, count, 0);
}

std::filesystem::path pathOf(int file) {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), error);
}

int descriptorsOf(const std::filesystem::path& path) {
    struct stat wanted {};
    if (::stat(path.c_str(), &wanted) != 0) return 0;
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        struct stat open {};
        if (::stat(entry.path().c_str(), &open) == 0 && open.st_dev == wanted.st_dev &&
            open.st_ino == wanted.st_ino)
            ++found;
    }
    return found;
}

}  // namespace support

extern "C" {

int rename(const char* from, const char* to) noexcept {
    if (support::interposed.rename) return support::interposed.rename(from, to);
    return support::systemRename(from, to);
}

int fsync(int file) {
    if (support::interposed.fsync) return support::interposed.fsync(file);
    return support::systemFsync(file);
}

int futimens(int file, const timespec* times) noexcept {
    if (support::interposed.futimens) return support::interposed.futimens(file);
    return support::next<int(int, const timespec*)>("futimens")(file, times);
}

int fchown(int file, uid_t user, gid_t group) noexcept {
    if (support::interposed.fchown) return support::interposed.fchown(file, user, group);
    return support::next<int(int, uid_t, gid_t)>("fchown")(file, user, group);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t at) {
    if (support::interposed.pwrite) return support::interposed.pwrite(file, bytes, count, at);
    return support::systemPwrite(file, bytes, count, at);
}

ssize_t copy_file_range(int from, off64_t* in, int to, off64_t* out, size_t count, unsigned) {
    if (support::interposed.copyFileRange)
        return support::interposed.copyFileRange(from, in, to, out, count);
    return support::systemCopyFileRange(from, in, to, out, count);
}
}
