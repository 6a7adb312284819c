// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/FlacMetadata.h"

#include <algorithm>
#include <array>

#include "audio/tags/CueSheet.h"
#include "audio/tags/VorbisComment.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::tags {
namespace {

using Bytes = std::vector<std::uint8_t>;

enum BlockType : std::uint8_t { streamInfo = 0, seekTable = 3, comments = 4, cueSheet = 5 };
constexpr std::uint8_t lastBlock = 0x80;
constexpr std::size_t largestBlock = 0xFFFFFF;

/// The comments are those of Vorbis without the packet's signature.
Bytes withoutLevels(const Bytes& body) {
    static constexpr std::array<std::uint8_t, 7> signature{3, 'v', 'o', 'r', 'b', 'i', 's'};
    Bytes packet(signature.size() + body.size());
    std::copy(signature.begin(), signature.end(), packet.begin());
    std::copy(body.begin(), body.end(), packet.begin() + signature.size());
    const Bytes kept = withoutLevelComments(packet);
    return {kept.begin() + signature.size(), kept.end()};
}

Bytes carried(const FlacBlock& block, const Carriage& carriage) {
    if (block.type == comments && carriage.levels == LevelFields::Drop)
        return withoutLevels(block.body);
    if (block.type == cueSheet) return movedCueSheet(block.body, carriage.moved);
    return block.body;
}

}  // namespace

FlacBlockHead flacBlockHead(std::span<const std::uint8_t> bytes) {
    return {static_cast<std::uint8_t>(bytes[0] & ~lastBlock), (bytes[0] & lastBlock) != 0,
            std::size_t(bytes[1]) << 16 | std::size_t(bytes[2]) << 8 | bytes[3]};
}

std::vector<FlacBlock> mergedBlocks(const std::vector<FlacBlock>& sound,
                                    const std::vector<FlacBlock>& source,
                                    const Carriage& carriage) {
    std::vector<FlacBlock> blocks;
    for (const FlacBlock& block : sound)
        if (block.type == streamInfo) blocks.push_back(block);
    for (const FlacBlock& block : source)
        if (block.type != streamInfo && block.type != seekTable)
            blocks.push_back({block.type, carried(block, carriage)});
    return blocks;
}

Bytes storedBlock(const FlacBlock& block, bool last) {
    const std::size_t size = std::min(block.body.size(), largestBlock);
    Bytes stored(flacBlockHeader + size);
    stored[0] = static_cast<std::uint8_t>(block.type | (last ? lastBlock : 0));
    stored[1] = static_cast<std::uint8_t>(size >> 16);
    stored[2] = static_cast<std::uint8_t>(size >> 8);
    stored[3] = static_cast<std::uint8_t>(size);
    std::copy_n(block.body.begin(), size, stored.begin() + flacBlockHeader);
    return stored;
}

void refuseFlacBlocks(const std::filesystem::path& file) {
    throw platform::Error("\"" + platform::toUtf8(file) +
                          "\" cannot be saved: its metadata blocks are damaged, and what they hold "
                          "would be lost.");
}

}  // namespace audio::tags
