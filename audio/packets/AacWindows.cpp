// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/packets/AacWindows.h"

#include <cstddef>
#include <optional>

namespace audio::packets {
namespace {

// ISO/IEC 14496-3, tables 4.3 (elements), 4.5 and 4.6 (ics_info).
enum Element { Single = 0, Pair = 1, Data = 4, Fill = 6 };
enum Sequence { Long = 0, Start = 1, Short = 2, Stop = 3 };

class Bits {
  public:
    explicit Bits(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    unsigned read(int count) {
        unsigned value = 0;
        for (; count > 0; --count, ++at_) value = value << 1 | bit();
        return value;
    }
    void skip(std::size_t count) { at_ += count; }
    void align() { at_ = (at_ + 7) / 8 * 8; }
    bool ended() const { return at_ > bytes_.size() * 8; }

  private:
    unsigned bit() const {
        return at_ / 8 < bytes_.size() ? bytes_[at_ / 8] >> (7 - at_ % 8) & 1U : 0;
    }
    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

/// How a window ends; bit 0: by Kaiser and Bessel rather than by a sine, bit 1: shortly.
using Slope = unsigned;

Slope slopeOf(Bits& bits) {
    bits.skip(1);
    const unsigned sequence = bits.read(2);
    const unsigned shape = bits.read(1);
    return shape | (sequence == Start || sequence == Short ? 2U : 0U);
}

void skipFill(Bits& bits) {
    unsigned count = bits.read(4);
    if (count == 15) count += bits.read(8) - 1;
    bits.skip(std::size_t{8} * count);
}

void skipData(Bits& bits) {
    bits.skip(4);
    const bool aligned = bits.read(1) != 0;
    unsigned count = bits.read(8);
    if (count == 255) count += bits.read(8);
    if (aligned) bits.align();
    bits.skip(std::size_t{8} * count);
}

std::optional<Slope> endOf(std::span<const std::uint8_t> packet) {
    Bits bits(packet);
    while (!bits.ended()) {
        switch (bits.read(3)) {
            case Single:
                bits.skip(4 + 8);  // its tag, the global gain
                return slopeOf(bits);
            case Pair: {
                bits.skip(4);
                const bool common = bits.read(1) != 0;
                return common ? std::optional(slopeOf(bits)) : std::nullopt;
            }
            case Fill:
                skipFill(bits);
                break;
            case Data:
                skipData(bits);
                break;
            default:
                return {};
        }
    }
    return {};
}

}  // namespace

bool windowsEndAlike(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
    const std::optional<Slope> first = endOf(a);
    return first && first == endOf(b);
}

}  // namespace audio::packets
