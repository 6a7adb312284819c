// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/PacketReader.h"

#include <new>

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {

PacketReader::PacketReader(const std::filesystem::path& file, const PacketIndex& index)
    : index_(index), reader_(file) {
    if (ogg_stream_init(&stream_, index.serial()) != 0) throw std::bad_alloc();
}

PacketReader::~PacketReader() {
    ogg_stream_clear(&stream_);
}

std::span<const std::uint8_t> PacketReader::packet(std::int64_t number) {
    const PacketIndex::Page& page = index_.pageBefore(number);
    if (next_ < page.packet || next_ > number) {
        reader_.seek(page.offset);
        ogg_stream_reset(&stream_);
        next_ = page.packet;
    }
    while (next_ < number) nextAudio();
    return nextAudio();
}

std::span<const std::uint8_t> PacketReader::nextAudio() {
    ogg_packet packet{};
    while (true) {
        if (ogg_stream_packetout(&stream_, &packet) == 1) {
            const std::span<const std::uint8_t> bytes(packet.packet,
                                                      static_cast<std::size_t>(packet.bytes));
            if (!isAudio(bytes)) continue;
            ++next_;
            return bytes;
        }
        ogg_page* page = reader_.next();
        if (!page) throw CannotSplice("Some of its packets are missing.");
        ogg_stream_pagein(&stream_, page);
    }
}

}  // namespace audio::vorbis
