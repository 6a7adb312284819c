// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <ogg/ogg.h>
#include <span>

namespace audio::ogg {

/// Puts the packets of one stream into pages (RFC 3533), with sequence numbers and checksums. One
/// thread at a time.
class PageWriter {
  public:
    using Take = std::function<void(std::span<const std::uint8_t>)>;

    /// `take` gets the bytes of the file, in order.
    PageWriter(int serial, Take take);
    ~PageWriter();
    PageWriter(const PageWriter&) = delete;
    PageWriter& operator=(const PageWriter&) = delete;

    /// The next packet; `granule` = position at its end, which a page states whose last packet it
    /// is. One below 0 ends no page: such a packet shares one with those that follow. After the
    /// last one flush() remains to be called.
    void put(std::span<const std::uint8_t> packet, std::int64_t granule, bool last = false);
    /// Ends the page: the next packet begins on a new one.
    void flush();

  private:
    void give(const ogg_page& page);

    Take take_;
    ogg_stream_state stream_{};
    std::int64_t packets_ = 0;
};

}  // namespace audio::ogg
