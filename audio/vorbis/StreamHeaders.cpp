// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/StreamHeaders.h"

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {

ogg_packet packetOf(std::span<const std::uint8_t> bytes) {
    ogg_packet packet{};
    packet.packet = const_cast<unsigned char*>(bytes.data());
    packet.bytes = static_cast<long>(bytes.size());
    packet.granulepos = -1;
    return packet;
}

StreamInfo::StreamInfo(const StreamHeaders& headers) {
    vorbis_info_init(&info_);
    vorbis_comment_init(&comment_);
    bool good = true;
    for (const PacketBytes* header : {&headers.identification, &headers.comment, &headers.setup}) {
        ogg_packet packet = packetOf(*header);
        packet.b_o_s = header == &headers.identification ? 1 : 0;
        good = good && vorbis_synthesis_headerin(&info_, &comment_, &packet) == 0;
    }
    good = good && vorbis_synthesis_init(&dsp_, &info_) == 0;
    if (good) {
        vorbis_block_init(&dsp_, &block_);
        return;
    }
    vorbis_dsp_clear(&dsp_);
    vorbis_comment_clear(&comment_);
    vorbis_info_clear(&info_);
    throw CannotSplice("Its Ogg Vorbis headers cannot be understood.");
}

StreamInfo::~StreamInfo() {
    vorbis_block_clear(&block_);
    vorbis_dsp_clear(&dsp_);
    vorbis_comment_clear(&comment_);
    vorbis_info_clear(&info_);
}

StreamInfo::Shape StreamInfo::shapeOf(std::span<const std::uint8_t> bytes) {
    ogg_packet packet = packetOf(bytes);
    if (vorbis_synthesis_trackonly(&block_, &packet) != 0)
        throw CannotSplice("One of its packets is damaged.");
    Shape shape;
    shape.isLong = block_.W != 0;
    shape.previousIsLong = shape.isLong && block_.lW != 0;
    shape.nextIsLong = shape.isLong && block_.nW != 0;
    shape.mode = block_.mode;
    return shape;
}

}  // namespace audio::vorbis
