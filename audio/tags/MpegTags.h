// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "audio/mpeg/read/FrameIndex.h"
#include "audio/mpeg/read/TagRanges.h"
#include "audio/tags/Carrier.h"
#include "audio/tags/LevelFields.h"
#include "platform/file/Replacement.h"

namespace audio::tags {

/// All that stands before and behind the frames of an MPEG audio file: ID3v2 and junk before;
/// ID3v1, APEv2, Lyrics3 and junk after. It is carried as it lies there, byte for byte; where
/// statements about the level are dropped, only those go and the tag they were in keeps its size.
class MpegTags {
  public:
    /// The file must stay as it is while the value is used. Throws platform::Error.
    MpegTags(const std::filesystem::path& file, LevelFields levels);
    /// The same, where the file has been indexed already.
    MpegTags(const std::filesystem::path& file, const mpeg::FrameIndex& index, LevelFields levels);
    /// Of a stream of another codec that is tagged in the same way.
    MpegTags(const std::filesystem::path& file, const mpeg::TagRanges& ranges, LevelFields levels);

    bool empty() const { return leading_.empty() && trailing_.empty(); }
    void writeLeading(platform::file::Replacement& file) const { write(leading_, file); }
    void writeTrailing(platform::file::Replacement& file) const { write(trailing_, file); }

  private:
    /// A stretch of the file, or what stands in its place.
    struct Piece {
        mpeg::ByteRange range;
        std::vector<std::byte> replacement;  ///< empty: the range as it is
    };
    void write(const std::vector<Piece>& pieces, platform::file::Replacement& file) const;
    std::vector<Piece> piecesOf(mpeg::ByteRange range, LevelFields levels) const;

    std::filesystem::path file_;
    std::vector<Piece> leading_;
    std::vector<Piece> trailing_;
};

/// Raw AAC, WavPack and TTA, which are tagged around the stream as MPEG audio is.
void writeBetweenTags(const Carriage& carriage, platform::file::Replacement& file);

}  // namespace audio::tags
