// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/FrameHeader.h"

#include <array>

namespace audio::mpeg {
namespace {

using Rates = std::array<std::int16_t, 15>;

// ISO/IEC 11172-3 table 3-B.2.4.2.3 and 13818-3 2.4.2.3, kbit/s by index; 0 = free format.
constexpr std::array<Rates, 3> mpeg1Rates = {{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
}};
constexpr Rates lsfLayer1Rates = {0,   32,  48,  56,  64,  80,  96, 112,
                                  128, 144, 160, 176, 192, 224, 256};
constexpr Rates lsfRates = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};

std::optional<Version> versionOf(std::uint32_t word) {
    switch (word >> 19 & 3) {
        case 0:
            return Version::Mpeg25;
        case 2:
            return Version::Mpeg2;
        case 3:
            return Version::Mpeg1;
        default:
            return std::nullopt;
    }
}

int sampleRateOf(Version version, std::uint32_t index) {
    constexpr std::array<int, 3> rates = {44100, 48000, 32000};
    const int divisor = version == Version::Mpeg1 ? 1 : version == Version::Mpeg2 ? 2 : 4;
    return rates[index] / divisor;
}

}  // namespace

std::optional<FrameHeader> FrameHeader::parse(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < 4 || bytes[0] != 0xFF || (bytes[1] & 0xE0) != 0xE0) return std::nullopt;
    FrameHeader header;
    header.word = static_cast<std::uint32_t>(bytes[0]) << 24 |
                  static_cast<std::uint32_t>(bytes[1]) << 16 |
                  static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
    const auto version = versionOf(header.word);
    const std::uint32_t layerBits = header.word >> 17 & 3;
    const std::uint32_t rateIndex = header.word >> 10 & 3;
    if (!version || layerBits == 0 || header.bitRateIndex() == 15 || rateIndex == 3) {
        return std::nullopt;
    }
    header.version = *version;
    header.layer = 4 - static_cast<int>(layerBits);
    header.crc = (header.word >> 16 & 1) == 0;
    header.bitRate = bitRateOf(header.version, header.layer, header.bitRateIndex());
    header.sampleRate = sampleRateOf(header.version, rateIndex);
    header.padding = (header.word >> 9 & 1) != 0;
    header.mode = static_cast<ChannelMode>(header.word >> 6 & 3);
    header.modeExtension = static_cast<int>(header.word >> 4 & 3);
    return header;
}

int FrameHeader::samples() const {
    if (layer == 1) return 384;
    return layer == 3 && lsf() ? 576 : 1152;
}

int FrameHeader::size() const {
    if (freeFormat()) return 0;
    if (layer == 1) return (12 * bitRate / sampleRate + (padding ? 1 : 0)) * 4;
    return samples() / 8 * bitRate / sampleRate + (padding ? 1 : 0);
}

int FrameHeader::sideInfoSize() const {
    if (layer != 3) return 0;
    if (lsf()) return channels() == 1 ? 9 : 17;
    return channels() == 1 ? 17 : 32;
}

bool FrameHeader::sameStream(const FrameHeader& other) const {
    // Sync, version, layer and sampling rate are these bits of the header.
    constexpr std::uint32_t fixedBits = 0xFFFE0C00U;
    return (word & fixedBits) == (other.word & fixedBits) && channels() == other.channels() &&
           freeFormat() == other.freeFormat();
}

FrameHeader FrameHeader::withBitRateIndex(int index) const {
    FrameHeader changed = *this;
    changed.word = (word & ~0xF000U) | static_cast<std::uint32_t>(index) << 12;
    changed.bitRate = bitRateOf(version, layer, index);
    return changed;
}

int FrameHeader::bitRateOf(Version version, int layer, int index) {
    const auto row = static_cast<std::size_t>(layer - 1);
    const auto column = static_cast<std::size_t>(index);
    if (version == Version::Mpeg1) return mpeg1Rates[row][column] * 1000;
    return (layer == 1 ? lsfLayer1Rates : lsfRates)[column] * 1000;
}

int decoderDelay(int layer) {
    return layer == 3 ? 529 : 481;
}

}  // namespace audio::mpeg
