// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/MpegTags.h"

#include "audio/mpeg/FileReader.h"

namespace audio::tags {

MpegTags::MpegTags(const std::filesystem::path& file, LevelFields levels)
    : MpegTags(file, mpeg::FrameIndex(file), levels) {}

MpegTags::MpegTags(const std::filesystem::path& file, const mpeg::FrameIndex& index,
                   LevelFields levels)
    : file_(file),
      leading_(piecesOf(index.leading(), levels)),
      trailing_(piecesOf(index.trailing(), levels)) {}

void MpegTags::write(const std::vector<Piece>& pieces, platform::AtomicFile& file) const {
    for (const Piece& piece : pieces) {
        if (piece.replacement.empty())
            file.copyFrom(file_, piece.range.offset, piece.range.size);
        else
            file.write(piece.replacement);
    }
}

std::vector<MpegTags::Piece> MpegTags::piecesOf(mpeg::ByteRange range, LevelFields) const {
    if (range.size <= 0) return {};
    return {{range, {}}};
}

}  // namespace audio::tags
