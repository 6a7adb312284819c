// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/ScaleFactors.h"

#include <algorithm>
#include <array>
#include <vector>

namespace audio::mpeg {
namespace {

/// Reads and rewrites fields of a few bits.
class BitFields {
  public:
    BitFields(std::span<std::uint8_t> bytes, std::size_t from) : bytes_(bytes), at_(from * 8) {}

    bool holds(std::size_t bits) const { return at_ + bits <= bytes_.size() * 8; }
    int take(std::size_t bits) {
        int value = 0;
        for (; bits > 0; --bits, ++at_) value = value << 1 | (bytes_[at_ / 8] >> (7 - at_ % 8) & 1);
        return value;
    }
    /// Overwrites the field that was taken last.
    void putBack(int value, std::size_t bits) {
        at_ -= bits;
        for (; bits > 0; --bits, ++at_) {
            const auto mask = static_cast<std::uint8_t>(0x80 >> at_ % 8);
            std::uint8_t& byte = bytes_[at_ / 8];
            byte = static_cast<std::uint8_t>((byte & ~mask) | (value >> (bits - 1) & 1 ? mask : 0));
        }
    }

  private:
    std::span<std::uint8_t> bytes_;
    std::size_t at_;
};

/// How many bits tell each subband's allocation, by ranges of subbands; the tables end where no
/// subband has any (ISO/IEC 11172-3, tables 3-B.2a to d; 13818-3, table B.1).
struct Allocation {
    std::array<std::size_t, 3> ends;  ///< subbands with 4, 3 and 2 bits end here
    std::size_t subbands() const { return *std::max_element(ends.begin(), ends.end()); }
    std::size_t bits(std::size_t subband) const {
        return subband < ends[0] ? 4 : subband < ends[1] ? 3 : 2;
    }
};

Allocation allocationOf(const FrameHeader& header) {
    if (header.lsf()) return {{4, 11, 30}};
    const int kbps = header.bitRate / 1000 / header.channels();
    if (kbps < 56) return {{2, header.sampleRate == 32000 ? 12U : 8U, 0}};
    if (header.sampleRate == 48000 || kbps < 96) return {{11, 23, 27}};
    return {{11, 23, 30}};
}

/// Which of a subband's channels have sound, and how many factors for it.
struct Channel {
    bool heard = false;
    int factors = 0;
};

}  // namespace

bool changeScaleFactors(const FrameHeader& header, std::span<std::uint8_t> frame, int steps) {
    constexpr int largestIndex = 62;
    const Allocation allocation = allocationOf(header);
    const auto channels = static_cast<std::size_t>(header.channels());
    const std::size_t subbands = allocation.subbands();
    // From here on both channels share their samples, and what is said of their number of bits.
    const std::size_t bound = header.mode == ChannelMode::Joint
                                  ? static_cast<std::size_t>(4 * (header.modeExtension + 1))
                                  : subbands;
    BitFields fields(frame, header.crc ? 6 : 4);
    std::vector<std::array<Channel, 2>> bands(subbands);
    for (std::size_t band = 0; band < subbands; ++band) {
        for (std::size_t c = 0; c < channels; ++c) {
            const bool shared = c > 0 && band >= bound;
            if (!fields.holds(4)) return false;
            bands[band][c].heard =
                shared ? bands[band][0].heard : fields.take(allocation.bits(band)) != 0;
        }
    }
    constexpr std::array factorsOf = {3, 2, 1, 2};
    for (auto& band : bands) {
        for (Channel& channel : band) {
            if (!channel.heard) continue;
            if (!fields.holds(2)) return false;
            channel.factors = factorsOf[static_cast<std::size_t>(fields.take(2))];
        }
    }
    for (const auto& band : bands) {
        for (const Channel& channel : band) {
            for (int i = 0; i < channel.factors; ++i) {
                if (!fields.holds(6)) return false;
                const int index = fields.take(6) - steps;  // a higher one is softer
                if (index < 0 || index > largestIndex) return false;
                fields.putBack(index, 6);
            }
        }
    }
    return true;
}

}  // namespace audio::mpeg
