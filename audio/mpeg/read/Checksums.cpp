// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/Checksums.h"

#include <array>

namespace audio::mpeg {
namespace {

// Table k advances a byte over k further zero bytes, so that eight bytes take one step.
using Tables = std::array<std::array<std::uint16_t, 256>, 8>;

constexpr Tables makeTables() {
    Tables tables{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit) crc = crc & 1 ? crc >> 1 ^ 0xA001 : crc >> 1;
        tables[0][i] = static_cast<std::uint16_t>(crc);
    }
    for (std::size_t k = 1; k < tables.size(); ++k) {
        for (std::size_t i = 0; i < 256; ++i) {
            const std::uint16_t before = tables[k - 1][i];
            tables[k][i] = static_cast<std::uint16_t>(before >> 8 ^ tables[0][before & 255]);
        }
    }
    return tables;
}

constexpr Tables tables = makeTables();

}  // namespace

std::uint16_t lameCrc(std::uint16_t crc, std::span<const std::uint8_t> bytes) {
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) {
        crc = static_cast<std::uint16_t>(
            tables[7][(bytes[i] ^ crc) & 255] ^ tables[6][(bytes[i + 1] ^ crc >> 8) & 255] ^
            tables[5][bytes[i + 2]] ^ tables[4][bytes[i + 3]] ^ tables[3][bytes[i + 4]] ^
            tables[2][bytes[i + 5]] ^ tables[1][bytes[i + 6]] ^ tables[0][bytes[i + 7]]);
    }
    for (; i < bytes.size(); ++i) {
        crc = static_cast<std::uint16_t>(crc >> 8 ^ tables[0][(crc ^ bytes[i]) & 255]);
    }
    return crc;
}

void updateFrameCrc(const FrameHeader& header, std::span<std::uint8_t> frame) {
    if (!header.crc) return;
    unsigned crc = 0xFFFF;
    const auto add = [&crc](std::uint8_t byte) {
        crc ^= static_cast<unsigned>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit) crc = crc & 0x8000 ? crc << 1 ^ 0x8005 : crc << 1;
    };
    add(frame[2]);
    add(frame[3]);
    for (const std::uint8_t byte :
         frame.subspan(6, static_cast<std::size_t>(header.sideInfoSize()))) {
        add(byte);
    }
    frame[4] = static_cast<std::uint8_t>(crc >> 8);
    frame[5] = static_cast<std::uint8_t>(crc);
}

}  // namespace audio::mpeg
