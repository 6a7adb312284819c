// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ogg/PageWriter.h"

#include <new>

namespace audio::ogg {
namespace {

constexpr int largestPage = 255 * 255;

}  // namespace

PageWriter::PageWriter(int serial, Take take) : take_(std::move(take)) {
    if (ogg_stream_init(&stream_, serial) != 0) throw std::bad_alloc();
}

PageWriter::~PageWriter() {
    ogg_stream_clear(&stream_);
}

void PageWriter::put(std::span<const std::uint8_t> packet, std::int64_t granule, bool last) {
    ogg_packet out{};
    out.packet = const_cast<unsigned char*>(packet.data());  // the library only copies it
    out.bytes = static_cast<long>(packet.size());
    out.b_o_s = packets_ == 0 ? 1 : 0;
    out.e_o_s = last ? 1 : 0;
    out.granulepos = granule;
    out.packetno = packets_++;
    if (ogg_stream_packetin(&stream_, &out) != 0) throw std::bad_alloc();
    if (granule < 0) return;
    ogg_page page{};
    while (ogg_stream_pageout(&stream_, &page) != 0) give(page);
}

void PageWriter::flush() {
    ogg_page page{};
    while (ogg_stream_flush_fill(&stream_, &page, largestPage) != 0) give(page);
}

void PageWriter::give(const ogg_page& page) {
    take_({page.header, static_cast<std::size_t>(page.header_len)});
    take_({page.body, static_cast<std::size_t>(page.body_len)});
}

}  // namespace audio::ogg
