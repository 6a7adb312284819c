// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <ogg/ogg.h>

#include "platform/file/WindowReader.h"

namespace audio::ogg {

/// Reads the pages of an Ogg file (RFC 3533) one after the other, whole and with a right checksum;
/// what lies between them is passed over. Memory: a page or two. One thread at a time.
class PageReader {
  public:
    /// Opens; throws platform::Error naming the file where that fails.
    explicit PageReader(const std::filesystem::path& file);
    ~PageReader();
    PageReader(const PageReader&) = delete;
    PageReader& operator=(const PageReader&) = delete;

    /// The next page, valid until the next call; null at the end of the file. Throws
    /// platform::Error where the file cannot be read.
    ogg_page* next();
    /// Where the page that next() gave begins in the file.
    std::int64_t offset() const { return offset_; }
    /// Goes on with the first page that begins here or later.
    void seek(std::int64_t offset);

  private:
    bool fill();

    platform::file::WindowReader file_;
    std::int64_t readTo_ = 0;
    ogg_sync_state sync_{};
    ogg_page page_{};
    std::int64_t offset_ = 0;
    std::int64_t position_ = 0;  ///< behind the last page
};

}  // namespace audio::ogg
