// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

#include "audio/ffmpeg/Ffmpeg.h"

namespace audio::packets {

/// The packets of a file and where its sound lies in them. All packets hold equally many frames (a
/// last one that does not is left out); packet k of a stream gives the decoded frames [k·size,
/// (k+1)·size), of which the first `skip` are no sound. A plain value.
struct Grid {
    std::int64_t size = 0;    ///< frames of a packet
    std::int64_t count = 0;   ///< packets of that size
    std::int64_t skip = 0;    ///< decoded frames before the sound
    std::int64_t frames = 0;  ///< of sound

    /// A decoder that begins inside a stream, or behind a seam, is right after so many frames:
    /// 80 ms for Opus (RFC 7845, section 4.6), the half of a window for AAC.
    std::int64_t preRoll = 0;
    /// Behind its own frames a packet has a part in so many more.
    std::int64_t overlap = 0;
    /// Decoded frames before the sound where all of the beginning is encoded anew, at least.
    std::int64_t leastSkip = 0;
    /// Packets to each side of a seam among which a place is sought where both sides fit together.
    std::int64_t search = 0;
};

/// What a file's packets are, read from them without decoding, and how its stream is described.
struct PacketStream {
    Grid grid;
    ffmpeg::ParametersPtr parameters;
};

/// Throws CannotJoin where the packets are of a kind that cannot be joined: neither Opus nor
/// AAC-LC, of unequal sizes, with holes or unclear ends.
PacketStream readStream(const std::filesystem::path& file);

}  // namespace audio::packets
