// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/SideInfo.h"

namespace audio::mpeg {
namespace {

class BitReader {
  public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    int take(int count) {
        int value = 0;
        for (int i = 0; i < count; ++i, ++position_) {
            const auto byte = static_cast<std::size_t>(position_ >> 3);
            const int bit = byte < bytes_.size() ? bytes_[byte] >> (7 - (position_ & 7)) & 1 : 0;
            value = value << 1 | bit;
        }
        return value;
    }
    void skip(int count) { position_ += count; }
    int position() const { return position_; }

  private:
    std::span<const std::uint8_t> bytes_;
    int position_ = 0;
};

SideInfo::Granule readGranule(BitReader& bits, bool lsf) {
    SideInfo::Granule granule;
    granule.bits = bits.take(12);
    bits.skip(9);  // big_values
    granule.gainBit = bits.position();
    granule.globalGain = bits.take(8);
    bits.skip(lsf ? 9 : 4);  // scalefac_compress
    if (bits.take(1)) {
        granule.blockType = bits.take(2);
        granule.mixed = bits.take(1) != 0;
        bits.skip(19);  // table_select, subblock_gain
    } else {
        bits.skip(22);  // table_select, region counts
    }
    bits.skip(lsf ? 2 : 3);  // preflag (MPEG-1 only), scalefac_scale, count1table_select
    return granule;
}

// Whether the second half of a window of this type is the long one.
bool endsLong(int blockType) {
    return blockType == 0 || blockType == 3;
}

bool beginsLong(int blockType) {
    return blockType == 0 || blockType == 1;
}

}  // namespace

SideInfo SideInfo::parse(const FrameHeader& header, std::span<const std::uint8_t> sideInfo) {
    SideInfo info;
    info.channels = header.channels();
    info.granules = header.lsf() ? 1 : 2;
    BitReader bits(sideInfo);
    info.mainDataBegin = bits.take(header.lsf() ? 8 : 9);
    if (header.lsf()) {
        bits.skip(info.channels == 1 ? 1 : 2);
    } else {
        bits.skip(info.channels == 1 ? 5 : 3);
        bits.skip(4 * info.channels);  // scfsi
    }
    for (int g = 0; g < info.granules; ++g) {
        for (int c = 0; c < info.channels; ++c) {
            info.granule[static_cast<std::size_t>(g)][static_cast<std::size_t>(c)] =
                readGranule(bits, header.lsf());
        }
    }
    return info;
}

int SideInfo::mainBytes() const {
    int bits = 0;
    for (int g = 0; g < granules; ++g) {
        for (int c = 0; c < channels; ++c) {
            bits += granule[static_cast<std::size_t>(g)][static_cast<std::size_t>(c)].bits;
        }
    }
    return (bits + 7) / 8;
}

bool SideInfo::windowsFit(const SideInfo& next) const {
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c) {
        const Granule& here = last()[c];
        const Granule& there = next.first()[c];
        // A mixed block has long windows in its lowest bands and fits neither kind wholly.
        if (here.mixed || there.mixed) return false;
        if (endsLong(here.blockType) != beginsLong(there.blockType)) return false;
    }
    return true;
}

bool SideInfo::sameBlocks(const SideInfo& other) const {
    for (std::size_t g = 0; g < static_cast<std::size_t>(granules); ++g) {
        for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c) {
            if (granule[g][c].blockType != other.granule[g][c].blockType ||
                granule[g][c].mixed != other.granule[g][c].mixed) {
                return false;
            }
        }
    }
    return true;
}

int longestReservoir(const FrameHeader& header) {
    return header.lsf() ? 255 : 511;
}

void setMainDataBegin(const FrameHeader& header, std::span<std::uint8_t> sideInfo, int bytes) {
    if (header.lsf()) {
        sideInfo[0] = static_cast<std::uint8_t>(bytes);
    } else {
        sideInfo[0] = static_cast<std::uint8_t>(bytes >> 1);
        sideInfo[1] = static_cast<std::uint8_t>((sideInfo[1] & 0x7F) | (bytes & 1) << 7);
    }
}

void setByteAtBit(std::span<std::uint8_t> bytes, int bit, std::uint8_t value) {
    const auto byte = static_cast<std::size_t>(bit >> 3);
    const int shift = bit & 7;
    const auto keepHigh = static_cast<std::uint8_t>(0xFF00 >> shift);
    bytes[byte] = static_cast<std::uint8_t>((bytes[byte] & keepHigh) | value >> shift);
    if (shift == 0) return;
    const auto keepLow = static_cast<std::uint8_t>(0xFF >> shift);
    bytes[byte + 1] = static_cast<std::uint8_t>((bytes[byte + 1] & keepLow) | value << (8 - shift));
}

}  // namespace audio::mpeg
