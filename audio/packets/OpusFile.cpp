// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <string_view>

#include "audio/ogg/PageWriter.h"
#include "audio/packets/PacketSink.h"

namespace audio::packets {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A stream's number, from what it is made of: the same save gives the same bytes.
int serialOf(const Bytes& head, std::span<const std::uint8_t> comment, const Layout& layout) {
    std::uint32_t hash = 2'166'136'261U;  // FNV-1a
    const auto add = [&hash](std::uint32_t value) { hash = (hash ^ value) * 16'777'619U; };
    for (const std::uint8_t byte : head) add(byte);
    for (const std::uint8_t byte : comment) add(byte);
    add(static_cast<std::uint32_t>(layout.frames));
    return static_cast<int>(hash & 0x7FFFFFFF);
}

/// The head with another number of frames to skip, which lies in its bytes 10 and 11.
Bytes headOf(const AVCodecParameters& source, std::int64_t skip) {
    Bytes head(source.extradata, source.extradata + source.extradata_size);
    head[10] = static_cast<std::uint8_t>(skip & 0xFF);
    head[11] = static_cast<std::uint8_t>(skip >> 8 & 0xFF);
    return head;
}

/// A comment packet that holds none (RFC 7845, section 5.2).
Bytes emptyComment() {
    constexpr std::string_view signature = "OpusTags";
    Bytes packet(signature.begin(), signature.end());
    packet.resize(packet.size() + 8);
    return packet;
}

class OpusFile : public PacketSink {
  public:
    OpusFile(const Bytes& head, std::span<const std::uint8_t> comment, const Grid& grid,
             const Layout& layout, TakeBytes take)
        : size_(grid.size),
          end_(layout.skip + layout.frames),
          pages_(serialOf(head, comment, layout), std::move(take)) {
        pages_.put(head, 0);
        pages_.flush();
        if (comment.empty())
            pages_.put(emptyComment(), 0);
        else
            pages_.put(comment, 0);
        pages_.flush();
    }

    void put(std::span<const std::uint8_t> packet) override {
        granule_ = std::min(granule_ + size_, end_);
        pages_.put(packet, granule_, granule_ == end_);
    }
    void finish() override { pages_.flush(); }

  private:
    std::int64_t size_;
    std::int64_t end_;
    std::int64_t granule_ = 0;
    ogg::PageWriter pages_;
};

}  // namespace

std::unique_ptr<PacketSink> openOpusFile(const AVCodecParameters& source, const Grid& grid,
                                         const Layout& layout,
                                         std::span<const std::uint8_t> comment, TakeBytes take) {
    return std::make_unique<OpusFile>(headOf(source, layout.skip), comment, grid, layout,
                                      std::move(take));
}

}  // namespace audio::packets
