// SPDX-License-Identifier: GPL-3.0-or-later
// Copying from file to file inside the system, by the fastest way that it has.
#include <algorithm>
#include <cerrno>
#include <sys/ioctl.h>
#include <sys/stat.h>
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

/// What the system copies by itself, shortening `left` by it: all of it, or up to where it cannot
/// (across file systems, or where it does not know the call). An error is one of the disk's.
std::error_code copyInside(int from, int to, Stretch& left) {
#ifdef Q_OS_LINUX
    while (left.size > 0) {
        off_t in = left.offset;
        off_t out = left.position;
        const auto count =
            static_cast<std::size_t>(std::min<std::int64_t>(left.size, std::int64_t{64} << 20));
        const ssize_t done = ::copy_file_range(from, &in, to, &out, count, 0);
        if (done < 0 && errno == EINTR) continue;
        if (done < 0 && (errno == ENOSPC || errno == EIO || errno == EFBIG || errno == EDQUOT))
            return lastSystemError();
        if (done <= 0) return {};
        left = {left.offset + done, left.position + done, left.size - done};
    }
#endif
    return {};
}

}  // namespace

bool File::copyFrom(const File& source, std::int64_t offset, std::int64_t size,
                    std::int64_t position, std::error_code& error) {
    const int from = static_cast<int>(source.handle_);
    const int to = static_cast<int>(handle_);
    const auto copyPart = [&](Stretch left) {
        const std::int64_t whole = left.size;
        error = copyInside(from, to, left);
        if (error) return false;
        wrote(whole - left.size);
        std::vector<std::byte> buffer;
        while (left.size > 0) {
            buffer.resize(
                static_cast<std::size_t>(std::min<std::int64_t>(left.size, std::int64_t{1} << 20)));
            if (!source.readAt(left.offset, buffer, error) ||
                !writeAt(left.position, buffer, error))
                return false;
            const auto count = static_cast<std::int64_t>(buffer.size());
            left = {left.offset + count, left.position + count, left.size - count};
        }
        return true;
    };
    const Stretch blocks = wholeBlocks({offset, position, size}, to);
    if (!shareBlocks(from, to, blocks)) return copyPart({offset, position, size});
    const std::int64_t ahead = blocks.offset - offset;
    const std::int64_t done = ahead + blocks.size;
    return copyPart({offset, position, ahead}) &&
           copyPart({offset + done, position + done, size - done});
}

}  // namespace platform::file
