// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/WindowReader.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/Paths.h"

namespace platform::file {
namespace {

// Large enough that system calls cost nothing beside the copy, small enough for the cache.
constexpr std::size_t windowBytes = 256 * 1024;

}  // namespace

WindowReader::WindowReader(const std::filesystem::path& file) : path_(file) {
    std::error_code error;
    if (!file_.openForReading(path_, error)) fail(error);
    const auto about = file_.stamp(error);
    if (!about) fail(error);
    size_ = about->size;
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
    std::error_code error;
    std::size_t got = 0;
    while (got < wanted) {
        const auto bytes = file_.readSome(
            offset + static_cast<std::int64_t>(got),
            std::as_writable_bytes(std::span(window_).subspan(got, wanted - got)), error);
        if (!bytes) fail(error);
        if (*bytes == 0) break;
        got += *bytes;
    }
    if (got < count)
        throw Error("The file \"" + toUtf8(path_) + "\" became shorter while it was read.");
    windowStart_ = offset;
    windowSize_ = got;
}

void WindowReader::fail(const std::error_code& reason) const {
    throw Error("The file \"" + toUtf8(path_) + "\" cannot be read: " + reason.message() + ".");
}

}  // namespace platform::file
