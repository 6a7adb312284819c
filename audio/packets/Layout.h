// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/packets/Grid.h"

namespace audio::packets {

/// A stretch of the sound to write: frames of the source as they are, or sound that is new.
struct Run {
    std::int64_t source = -1;  ///< its first frame in the source; -1: new
    std::int64_t frames = 0;
};

/// Neighbouring packets of the stream to write.
struct Piece {
    std::int64_t first = 0;    ///< number in the new stream
    std::int64_t end = 0;      ///< behind the last
    std::int64_t source = -1;  ///< the source's packet with which it begins; -1: encoded
    bool kept() const { return source >= 0; }
};

/// Which packets of the source are kept, where they lie in the new stream, and how it is trimmed.
struct Layout {
    std::int64_t skip = 0;     ///< decoded frames before the sound
    std::int64_t frames = 0;   ///< of sound
    std::int64_t packets = 0;  ///< of the new stream
    std::vector<Piece> pieces;
    bool keepsAny() const;
};

/// Plain arithmetic. A packet is kept where all frames that it has a part in are the source's, and
/// where, behind new packets, so many of them have coded the source's own sound that a decoder is
/// in step again. Packets move by whole packets alone; the trimming of the stream's start takes up
/// the rest once, so that where runs of the source move by other amounts, those lie on the grid
/// that together are longest, and the others are encoded.
Layout layOut(const Grid& grid, const std::vector<Run>& runs);

}  // namespace audio::packets
