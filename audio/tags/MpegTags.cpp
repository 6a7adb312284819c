// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/MpegTags.h"

#include <span>

#include "audio/tags/ApeLevel.h"
#include "audio/tags/Id3v2Level.h"
#include "platform/file/WindowReader.h"

namespace audio::tags {
namespace {

// Where statements about the level are to be taken out; beyond this nobody has tags.
constexpr std::int64_t largestEdited = std::int64_t{64} << 20;

void append(std::vector<std::byte>& to, std::span<const std::byte> bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

// Where an ID3v2 tag begins; the end where none does.
std::size_t findId3v2(std::span<const std::byte> bytes) {
    for (std::size_t at = 0; at + 10 < bytes.size(); ++at)
        if (bytes[at] == std::byte{'I'} && id3v2Size(bytes.subspan(at))) return at;
    return bytes.size();
}

void appendJunkAndApe(std::vector<std::byte>& result, std::span<const std::byte> bytes) {
    while (const auto place = findApeTag(bytes)) {
        append(result, bytes.first(place->start));
        append(result, withoutLevelItems(bytes.subspan(place->start, place->end - place->start)));
        bytes = bytes.subspan(place->end);
    }
    append(result, bytes);
}

std::vector<std::byte> withoutLevels(const std::vector<std::byte>& tags) {
    std::vector<std::byte> result;
    std::span<const std::byte> rest = tags;
    while (!rest.empty()) {
        const std::size_t before = findId3v2(rest);
        appendJunkAndApe(result, rest.first(before));
        rest = rest.subspan(before);
        if (rest.empty()) break;
        const std::size_t size = id3v2Size(rest).value_or(rest.size());
        append(result, withoutLevelFrames(rest.first(size)));
        rest = rest.subspan(size);
    }
    return result;
}

}  // namespace

MpegTags::MpegTags(const std::filesystem::path& file, LevelFields levels)
    : MpegTags(file, mpeg::FrameIndex(file), levels) {}

MpegTags::MpegTags(const std::filesystem::path& file, const mpeg::FrameIndex& index,
                   LevelFields levels)
    : file_(file),
      leading_(piecesOf(index.leading(), levels)),
      trailing_(piecesOf(index.trailing(), levels)) {}

MpegTags::MpegTags(const std::filesystem::path& file, const mpeg::TagRanges& ranges,
                   LevelFields levels)
    : file_(file), leading_(piecesOf({0, ranges.leadingEnd}, levels)) {
    const std::int64_t size = platform::file::WindowReader(file).size();
    trailing_ = piecesOf({ranges.trailingStart, size - ranges.trailingStart}, levels);
}

void MpegTags::write(const std::vector<Piece>& pieces, platform::file::Replacement& file) const {
    for (const Piece& piece : pieces) {
        if (piece.replacement.empty())
            file.copyFrom(file_, piece.range.offset, piece.range.size);
        else
            file.write(piece.replacement);
    }
}

// Tags are found by walking from one to the next; what is none is junk, and stays.
std::vector<MpegTags::Piece> MpegTags::piecesOf(mpeg::ByteRange range, LevelFields levels) const {
    if (range.size <= 0) return {};
    if (levels == LevelFields::Keep || range.size > largestEdited) return {{range, {}}};
    platform::file::WindowReader reader(file_);
    const auto read = std::as_bytes(reader.at(range.offset, static_cast<std::size_t>(range.size)));
    return {{range, withoutLevels({read.begin(), read.end()})}};
}

void writeBetweenTags(const Carriage& carriage, platform::file::Replacement& file) {
    platform::file::WindowReader reader(carriage.source);
    const MpegTags around(carriage.source, mpeg::findTags(reader), carriage.levels);
    around.writeLeading(file);
    file.copyFrom(carriage.encoded, 0,
                  static_cast<std::int64_t>(std::filesystem::file_size(carriage.encoded)));
    around.writeTrailing(file);
}

}  // namespace audio::tags
