// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

/// Calls of the system that a test wants to see, delay, change or fail. Interposed.cpp, linked into
/// a test program, stands in front of the system's library for the whole program.
namespace support {

/// What is called instead of the system's functions of these names; an empty one leads to the
/// system's own. Set and reset while nothing else runs; they are called on whatever thread saves.
struct Interposed {
    std::function<int(const char* from, const char* to)> rename;
    std::function<int(int file)> fsync;
    std::function<int(int file)> futimens;
    std::function<int(int file, uid_t user, gid_t group)> fchown;
    std::function<ssize_t(int file, const void* bytes, size_t count, off_t at)> pwrite;
    std::function<ssize_t(int from, off_t* in, int to, off_t* out, size_t count)> copyFileRange;
};
extern Interposed interposed;

// The system's own.
int systemRename(const char* from, const char* to);
int systemFsync(int file);
ssize_t systemPwrite(int file, const void* bytes, size_t count, off_t at);
ssize_t systemCopyFileRange(int from, off_t* in, int to, off_t* out, size_t count);

/// Puts the system's own back when a test ends.
struct InterposedReset {
    ~InterposedReset() { interposed = {}; }
};

/// The path of an open file, as the system knows it.
std::filesystem::path pathOf(int file);
/// How many descriptors of this process have a file open.
int descriptorsOf(const std::filesystem::path& path);

}  // namespace support
