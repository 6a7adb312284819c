// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "audio/tags/Carrier.h"

// The metadata blocks of FLAC (RFC 9639, section 8), wherever they lie. Plain values.
namespace audio::tags {

struct FlacBlock {
    std::uint8_t type = 0;
    std::vector<std::uint8_t> body;
};

constexpr std::size_t flacBlockHeader = 4;

/// The head of a block: its type, whether it says that it is the last, and its body's size.
struct FlacBlockHead {
    std::uint8_t type = 0;
    bool last = false;
    std::size_t size = 0;
};
/// `bytes` = at least flacBlockHeader of them.
FlacBlockHead flacBlockHead(std::span<const std::uint8_t> bytes);

/// The blocks of new sound with the metadata of its source: the new description of the stream, then
/// every block of the source but that and the seek table.
std::vector<FlacBlock> mergedBlocks(const std::vector<FlacBlock>& sound,
                                    const std::vector<FlacBlock>& source, const Carriage& carriage);

/// A block with its head, as it is stored.
std::vector<std::uint8_t> storedBlock(const FlacBlock& block, bool last);

/// Throws the platform::Error of a file whose blocks cannot be followed.
[[noreturn]] void refuseFlacBlocks(const std::filesystem::path& file);

}  // namespace audio::tags
