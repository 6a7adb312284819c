// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/SilentPackets.h"

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {
namespace {

constexpr int mostModeBits = 6;

/// How many bits the mode takes, nobody tells but the decoder, so all are tried.
PacketBytes silentPacket(StreamInfo& stream, const StreamInfo::Shape& wanted) {
    for (int modeBits = 0; modeBits <= mostModeBits; ++modeBits) {
        unsigned bits = static_cast<unsigned>(wanted.mode) << 1;  // the first 0 stands for sound
        int used = 1 + modeBits;
        if (wanted.isLong) {
            bits |= (wanted.previousIsLong ? 1U : 0U) << used++;
            bits |= (wanted.nextIsLong ? 1U : 0U) << used++;
        }
        PacketBytes packet(static_cast<std::size_t>(used + stream.channels() + 7) / 8);
        for (std::size_t i = 0; i < packet.size() && i < sizeof bits; ++i)
            packet[i] = static_cast<std::uint8_t>(bits >> (8 * i));
        const StreamInfo::Shape read = stream.shapeOf(packet);
        if (read.isLong == wanted.isLong && read.mode == wanted.mode &&
            read.previousIsLong == wanted.previousIsLong && read.nextIsLong == wanted.nextIsLong)
            return packet;
    }
    return {};
}

}  // namespace

SilentPackets::SilentPackets(const PacketIndex& index) {
    StreamInfo stream(index.headers());
    for (const bool isLong : {false, true}) {
        if (index.mode(isLong) < 0) continue;
        for (const bool previous : {false, true})
            for (const bool next : {false, true})
                packets_[numberOf(previous, isLong, next)] = silentPacket(
                    stream, {isLong, isLong && previous, isLong && next, index.mode(isLong)});
    }
}

std::size_t SilentPackets::numberOf(bool previousIsLong, bool isLong, bool nextIsLong) {
    return (previousIsLong ? 4U : 0U) + (isLong ? 2U : 0U) + (nextIsLong ? 1U : 0U);
}

const PacketBytes& SilentPackets::packet(bool previousIsLong, bool isLong, bool nextIsLong) const {
    const PacketBytes& packet = packets_[numberOf(previousIsLong, isLong, nextIsLong)];
    if (packet.empty()) throw CannotSplice("It has no blocks of the size that silence would take.");
    return packet;
}

}  // namespace audio::vorbis
