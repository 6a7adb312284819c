// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "platform/file/File.h"

namespace audio::write {

/// A file being written, whose every failure is a platform::Error that names it. One thread at a
/// time.
class OutputFile {
  public:
    /// Creates or empties the file.
    explicit OutputFile(const std::filesystem::path& path);

    void append(const unsigned char* bytes, std::size_t count);
    /// Overwrites bytes near the file's start; appending goes on at its end.
    void overwrite(std::int64_t offset, const unsigned char* bytes, std::size_t count);
    void close() { file_.close(); }

    const std::filesystem::path& path() const { return path_; }

  private:
    [[noreturn]] void fail(const std::error_code& reason) const;

    std::filesystem::path path_;
    platform::file::File file_;
    std::int64_t size_ = 0;
};

}  // namespace audio::write
