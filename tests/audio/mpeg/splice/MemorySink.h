// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "audio/mpeg/splice/Splice.h"

namespace support {

/// Keeps the stream in memory.
class MemorySink : public audio::mpeg::StreamSink {
  public:
    void write(std::span<const std::uint8_t> bytes) override {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    void rewrite(std::int64_t offset, std::span<const std::uint8_t> bytes) override {
        std::copy(bytes.begin(), bytes.end(), bytes_.begin() + offset);
    }
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace support
