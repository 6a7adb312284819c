// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/FlacBlocks.h"

#include <cstring>
#include <span>
#include <vector>

#include "audio/tags/FlacMetadata.h"
#include "audio/tags/MpegTags.h"
#include "platform/file/WindowReader.h"

namespace audio::tags {
namespace {

/// A FLAC file: what stands around the stream, its blocks, and where the frames begin.
struct Stream {
    mpeg::TagRanges around;
    std::vector<FlacBlock> blocks;
    std::int64_t frames = 0;
};

bool isFrame(std::span<const std::uint8_t> bytes) {
    return bytes.size() == 2 && bytes[0] == 0xFF && (bytes[1] & 0xFC) == 0xF8;
}

Stream readStream(const std::filesystem::path& file) {
    platform::file::WindowReader reader(file);
    Stream stream;
    stream.around = mpeg::findTags(reader);
    std::int64_t at = stream.around.leadingEnd;
    const auto signature = reader.at(at, 4);
    if (signature.size() < 4 || std::memcmp(signature.data(), "fLaC", 4) != 0)
        refuseFlacBlocks(file);
    at += 4;
    for (bool last = false; !last;) {
        const auto bytes = reader.at(at, flacBlockHeader);
        if (bytes.size() < flacBlockHeader) refuseFlacBlocks(file);
        const FlacBlockHead head = flacBlockHead(bytes);
        last = head.last;
        at += flacBlockHeader;
        const auto body = reader.at(at, head.size);
        if (body.size() < head.size) refuseFlacBlocks(file);
        stream.blocks.push_back({head.type, {body.begin(), body.end()}});
        at += static_cast<std::int64_t>(head.size);
    }
    if (at < reader.size() && !isFrame(reader.at(at, 2))) refuseFlacBlocks(file);
    stream.frames = at;
    return stream;
}

}  // namespace

void writeWithFlacBlocks(const Carriage& carriage, platform::file::Replacement& file) {
    const Stream sound = readStream(carriage.encoded);
    const Stream source = readStream(carriage.source);
    const MpegTags around(carriage.source, source.around, carriage.levels);
    around.writeLeading(file);
    file.write("fLaC", 4);
    const std::vector<FlacBlock> blocks = mergedBlocks(sound.blocks, source.blocks, carriage);
    for (const FlacBlock& block : blocks) {
        const auto stored = storedBlock(block, &block == &blocks.back());
        file.write(stored.data(), stored.size());
    }
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(carriage.encoded));
    file.copyFrom(carriage.encoded, sound.frames, size - sound.frames);
    around.writeTrailing(file);
}

}  // namespace audio::tags
