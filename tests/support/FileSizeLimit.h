// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace support {

/// While it lives, no file of this process grows beyond the limit: what a full disk is to a writer.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(std::uintmax_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    std::uintmax_t before_;
};

}  // namespace support
