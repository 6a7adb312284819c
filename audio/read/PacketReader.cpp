// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/read/PacketReader.h"

#include <algorithm>

#include "audio/read/ContainerPackets.h"
#include "audio/read/OggPackets.h"

namespace audio::read {

std::unique_ptr<PacketReader> openPackets(ffmpeg::Input input) {
    if (OggPackets::serves(input)) return std::make_unique<OggPackets>(input);
    return std::make_unique<ContainerPackets>(std::move(input));
}

std::uint32_t sumOf(std::span<const std::uint8_t> bytes) {
    std::uint32_t sum = 2'166'136'261U;  // FNV-1a
    for (const std::uint8_t byte : bytes.first(std::min<std::size_t>(bytes.size(), 256)))
        sum = (sum ^ byte) * 16'777'619U;
    return sum;
}

}  // namespace audio::read
