// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/WindowReader.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/Paths.h"

namespace platform::file {
namespace {

// Large enough that system calls cost nothing beside the copy, small enough for the cache.
constexpr std::size_t windowBytes = 256 * 1024;

platform::Error unreadable(const std::filesystem::path& path, const QFile& file) {
    return platform::Error("The file \"" + platform::toUtf8(path) +
                           "\" cannot be read: " + file.errorString().toStdString() + ".");
}

}  // namespace

WindowReader::WindowReader(const std::filesystem::path& file)
    : path_(file), file_(platform::toQString(file)) {
    if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) throw unreadable(path_, file_);
    size_ = file_.size();
}

std::span<const std::uint8_t> WindowReader::at(std::int64_t offset, std::size_t count) {
    if (offset < 0 || offset >= size_) return {};
    count = static_cast<std::size_t>(
        std::min<std::int64_t>(static_cast<std::int64_t>(count), size_ - offset));
    const std::int64_t windowEnd = windowStart_ + static_cast<std::int64_t>(windowSize_);
    if (offset < windowStart_ || offset + static_cast<std::int64_t>(count) > windowEnd) {
        fill(offset, count);
    }
    return {window_.data() + (offset - windowStart_), count};
}

void WindowReader::fill(std::int64_t offset, std::size_t count) {
    windowSize_ = 0;
    const auto left = static_cast<std::size_t>(size_ - offset);
    const std::size_t wanted = std::min(std::max(count, windowBytes), left);
    if (window_.size() < wanted) window_.resize(wanted);
    if (!file_.seek(offset)) throw unreadable(path_, file_);
    std::size_t got = 0;
    while (got < wanted) {
        const qint64 bytes = file_.read(reinterpret_cast<char*>(window_.data()) + got,
                                        static_cast<qint64>(wanted - got));
        if (bytes < 0) throw unreadable(path_, file_);
        if (bytes == 0) break;
        got += static_cast<std::size_t>(bytes);
    }
    if (got < count) {
        throw platform::Error("The file \"" + platform::toUtf8(path_) +
                              "\" became shorter while it was read.");
    }
    windowStart_ = offset;
    windowSize_ = got;
}

}  // namespace platform::file
