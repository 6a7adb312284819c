// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "platform/file/File.h"

namespace platform::file {

/// Reads a local file at any offset through one window of memory, cheapest when offsets rise. Not a
/// memory map, so that a file which shrinks meanwhile is an error and not the program's end. One
/// thread at a time.
class WindowReader {
  public:
    /// Opens; throws platform::Error naming file and reason.
    explicit WindowReader(const std::filesystem::path& file);
    WindowReader(const WindowReader&) = delete;
    WindowReader& operator=(const WindowReader&) = delete;

    /// Bytes in the file when it was opened.
    std::int64_t size() const { return size_; }
    const std::filesystem::path& path() const { return path_; }

    /// `count` bytes from `offset` on, fewer only where the file ends (none for an offset outside).
    /// Valid until the next call. Throws platform::Error where the file cannot be read.
    std::span<const std::uint8_t> at(std::int64_t offset, std::size_t count);

  private:
    void fill(std::int64_t offset, std::size_t count);
    [[noreturn]] void fail(const std::error_code& reason) const;

    std::filesystem::path path_;
    File file_;
    std::int64_t size_ = 0;
    std::vector<std::uint8_t> window_;
    std::int64_t windowStart_ = 0;
    std::size_t windowSize_ = 0;
};

}  // namespace platform::file
