// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// What splicing has to know of the side information of a Layer III frame (ISO/IEC 11172-3
/// 2.4.1.7, 13818-3 2.4.1.7). A plain value.
struct SideInfo {
    struct Granule {
        int bits = 0;  ///< part2_3_length: bits of main data
        int globalGain = 0;
        int blockType = 0;  ///< 0 long, 1 start, 2 short, 3 stop
        bool mixed = false;
        int gainBit = 0;  ///< where global_gain begins, in bits from the side information's start
    };
    int mainDataBegin = 0;  ///< bytes
    int granules = 0;       ///< per channel: 2, in MPEG-2 and 2.5 one
    int channels = 0;
    std::array<std::array<Granule, 2>, 2> granule;  ///< [granule][channel]

    /// `sideInfo` holds the header.sideInfoSize() bytes.
    static SideInfo parse(const FrameHeader& header, std::span<const std::uint8_t> sideInfo);

    /// Bytes of the frame's main data, without ancillary data.
    int mainBytes() const;
    const std::array<Granule, 2>& first() const { return granule[0]; }
    const std::array<Granule, 2>& last() const {
        return granule[static_cast<std::size_t>(granules - 1)];
    }
    /// Whether `next` can follow this frame: in every channel the window's second half here fits
    /// the first half there, long beside long or short beside short.
    bool windowsFit(const SideInfo& next) const;
    /// Whether every granule has the block type it has in `other`.
    bool sameBlocks(const SideInfo& other) const;
};

/// The farthest that main_data_begin can point back: 511 bytes, in MPEG-2 and 2.5 255.
int longestReservoir(const FrameHeader& header);
/// Writes main_data_begin into a side information.
void setMainDataBegin(const FrameHeader& header, std::span<std::uint8_t> sideInfo, int bytes);
/// Writes eight bits at any bit offset.
void setByteAtBit(std::span<std::uint8_t> bytes, int bit, std::uint8_t value);

}  // namespace audio::mpeg
