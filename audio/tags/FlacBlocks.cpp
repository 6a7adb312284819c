// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/FlacBlocks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <vector>

#include "audio/tags/CueSheet.h"
#include "audio/tags/MpegTags.h"
#include "audio/tags/VorbisComment.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/WindowReader.h"

// The layout of FLAC: RFC 9639, section 8.
namespace audio::tags {
namespace {

using Bytes = std::vector<std::uint8_t>;

enum BlockType : std::uint8_t { streamInfo = 0, seekTable = 3, comments = 4, cueSheet = 5 };
constexpr std::uint8_t lastBlock = 0x80;
constexpr std::int64_t blockHeader = 4;
constexpr std::size_t largestBlock = 0xFFFFFF;

struct Block {
    std::uint8_t type = 0;
    Bytes body;
};

/// A FLAC file: what stands around the stream, its blocks, and where the frames begin.
struct Stream {
    mpeg::TagRanges around;
    std::vector<Block> blocks;
    std::int64_t frames = 0;
};

[[noreturn]] void refuse(const std::filesystem::path& file) {
    throw platform::Error("\"" + platform::toUtf8(file) +
                          "\" cannot be saved: its metadata blocks are damaged, and what they hold "
                          "would be lost.");
}

bool isFrame(std::span<const std::uint8_t> bytes) {
    return bytes.size() == 2 && bytes[0] == 0xFF && (bytes[1] & 0xFC) == 0xF8;
}

Stream readStream(const std::filesystem::path& file) {
    platform::file::WindowReader reader(file);
    Stream stream;
    stream.around = mpeg::findTags(reader);
    std::int64_t at = stream.around.leadingEnd;
    const auto signature = reader.at(at, 4);
    if (signature.size() < 4 || std::memcmp(signature.data(), "fLaC", 4) != 0) refuse(file);
    at += 4;
    for (bool last = false; !last;) {
        const auto header = reader.at(at, blockHeader);
        if (header.size() < blockHeader) refuse(file);
        last = (header[0] & lastBlock) != 0;
        const auto type = static_cast<std::uint8_t>(header[0] & ~lastBlock);
        const std::size_t size = std::size_t(header[1]) << 16 | header[2] << 8 | header[3];
        const auto body = reader.at(at + blockHeader, size);
        if (body.size() < size) refuse(file);
        stream.blocks.push_back({type, {body.begin(), body.end()}});
        at += blockHeader + static_cast<std::int64_t>(size);
    }
    if (at < reader.size() && !isFrame(reader.at(at, 2))) refuse(file);
    stream.frames = at;
    return stream;
}

/// The comments are those of Vorbis without the packet's signature.
Bytes withoutLevels(const Bytes& body) {
    static constexpr std::array<std::uint8_t, 7> signature{3, 'v', 'o', 'r', 'b', 'i', 's'};
    Bytes packet(signature.size() + body.size());
    std::copy(signature.begin(), signature.end(), packet.begin());
    std::copy(body.begin(), body.end(), packet.begin() + signature.size());
    const Bytes kept = withoutLevelComments(packet);
    return {kept.begin() + signature.size(), kept.end()};
}

Bytes carried(const Block& block, const Carriage& carriage) {
    if (block.type == comments && carriage.levels == LevelFields::Drop)
        return withoutLevels(block.body);
    if (block.type == cueSheet) return movedCueSheet(block.body, carriage.moved);
    return block.body;
}

/// The new description of the stream, then everything of the source that is none.
std::vector<Block> merged(const Stream& sound, const Stream& source, const Carriage& carriage) {
    std::vector<Block> blocks;
    for (const Block& block : sound.blocks)
        if (block.type == streamInfo) blocks.push_back(block);
    for (const Block& block : source.blocks)
        if (block.type != streamInfo && block.type != seekTable)
            blocks.push_back({block.type, carried(block, carriage)});
    return blocks;
}

void put(const Block& block, bool last, platform::file::Replacement& file) {
    const std::size_t size = std::min(block.body.size(), largestBlock);
    const std::uint8_t header[] = {static_cast<std::uint8_t>(block.type | (last ? lastBlock : 0)),
                                   static_cast<std::uint8_t>(size >> 16),
                                   static_cast<std::uint8_t>(size >> 8),
                                   static_cast<std::uint8_t>(size)};
    file.write(header, sizeof header);
    file.write(block.body.data(), size);
}

}  // namespace

void writeWithFlacBlocks(const Carriage& carriage, platform::file::Replacement& file) {
    const Stream sound = readStream(carriage.encoded);
    const Stream source = readStream(carriage.source);
    const MpegTags around(carriage.source, source.around, carriage.levels);
    around.writeLeading(file);
    file.write("fLaC", 4);
    const std::vector<Block> blocks = merged(sound, source, carriage);
    for (const Block& block : blocks) put(block, &block == &blocks.back(), file);
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(carriage.encoded));
    file.copyFrom(carriage.encoded, sound.frames, size - sound.frames);
    around.writeTrailing(file);
}

}  // namespace audio::tags
