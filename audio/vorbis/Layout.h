// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/vorbis/PacketIndex.h"

namespace audio::vorbis {

/// A part of the new sound. Lengths and positions are frames.
struct Segment {
    enum class Kind {
        Source,    ///< frames of the source as they lie there, from sourceStart on
        Silence,   ///< digital silence
        Rendered,  ///< anything else; made of the source's from sourceStart on, where that is not
                   ///< -1
    };
    Kind kind = Kind::Rendered;
    std::int64_t length = 0;
    std::int64_t sourceStart = -1;

    static Segment source(std::int64_t start, std::int64_t length) {
        return {Kind::Source, length, start};
    }
    static Segment silence(std::int64_t length) { return {Kind::Silence, length, -1}; }
    static Segment rendered(std::int64_t length, std::int64_t start = -1) {
        return {Kind::Rendered, length, start};
    }
};

/// Where the packet of a block comes from.
enum class Origin : std::uint8_t {
    Kept,       ///< the source's, bit for bit
    Silent,     ///< a packet that says nothing
    Coded,      ///< coded anew in a block of the source, so that its rounding adds up: richly
    CodedFree,  ///< coded anew elsewhere
};

/// The blocks of the new stream. Memory: two bytes for each.
struct Layout {
    struct Block {
        bool isLong = false;
        Origin origin = Origin::Coded;
    };
    /// Blocks [first, first + count) that are packets of the source, from sourceFirst on.
    struct Kept {
        std::int64_t first = 0;
        std::int64_t count = 0;
        std::int64_t sourceFirst = 0;
    };
    std::vector<Block> blocks;
    std::vector<Kept> kept;
    std::int64_t firstCentre = 0;  ///< frame of the new sound; negative: so many are to be dropped
    std::int64_t frames = 0;       ///< of the new sound
    std::int64_t granuleOffset = 0;  ///< granule position less frame
    bool silenceBefore = false;      ///< what is dropped at the start is to be silence
    bool longBeforeFirst = false;    ///< what a long first or last block says of its neighbour
    bool longBehindLast = false;

    std::int64_t size() const { return static_cast<std::int64_t>(blocks.size()); }
    bool isLong(std::int64_t block) const {
        if (block < 0) return longBeforeFirst;
        return block < size() ? blocks[static_cast<std::size_t>(block)].isLong : longBehindLast;
    }
    Origin origin(std::int64_t block) const {
        return blocks[static_cast<std::size_t>(block)].origin;
    }
    bool coded(std::int64_t block) const {
        return origin(block) == Origin::Coded || origin(block) == Origin::CodedFree;
    }
    std::int64_t count(bool (*wanted)(Origin)) const;
};

/// Places blocks for the new sound, so that as many as possible are the source's own packets: all
/// whose window sees nothing but source sound in its old place. Long and short blocks lie on a grid
/// of half a short block; where a cut or an insertion inside is no multiple of that, the parts with
/// most of the sound keep their packets. Rendered sound takes the blocks of the source in its
/// place; silence gets long ones.
///
/// `canEncode`: whether blocks can be coded. Else a layout without coded ones is tried, in which
/// packets at the source's own ends stand beside silence as they are.
///
/// A new start lies on no centre: the stream begins at the last one before it, and the difference
/// is dropped by readers. Where that is half a short block or more, and blocks can be coded, short
/// silent blocks lead up to the start, so that a reader that drops nothing plays that much less.
///
/// Throws CannotSplice where nothing can be kept, or blocks had to be coded and cannot be.
Layout layOut(const PacketIndex& source, const std::vector<Segment>& plan, bool canEncode);

}  // namespace audio::vorbis
