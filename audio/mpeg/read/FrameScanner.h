// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "audio/mpeg/read/FrameHeader.h"
#include "audio/mpeg/read/TagRanges.h"
#include "platform/file/WindowReader.h"

namespace audio::mpeg {

/// One MPEG audio frame in a file.
struct ScannedFrame {
    std::int64_t offset = 0;  ///< of its header, from the start of the file
    int size = 0;  ///< bytes, header included; known in free format too; fewer where it is cut
    FrameHeader header;
    std::int64_t junkBefore = 0;  ///< bytes since the frame before that are no frame: lost sync
};

/// Finds the frames of an MPEG audio file one after another, without reading further than it has
/// to: a file can be played before all of it is indexed. The tags around the sound are skipped. Not
/// a decoder, and it does not tell sound from the info frame. One thread at a time.
class FrameScanner {
  public:
    /// Finds the tags and the first frame. The reader must outlive the scanner. Throws
    /// platform::Error where the file cannot be read; a file without any frame is no error.
    explicit FrameScanner(platform::file::WindowReader& reader);

    /// The next frame; nothing at the end. The last one may lack its end, but holds more than
    /// header and side information. Where sync is lost, the search goes on to the next place where
    /// frames follow one another. Throws platform::Error where the file cannot be read.
    std::optional<ScannedFrame> next();

    /// The bytes of a frame that next() gave, valid until the next call of any function.
    std::span<const std::uint8_t> bytes(const ScannedFrame& frame);

    /// Where the tags lie; junk before the first frame is not part of them.
    const TagRanges& tags() const { return tags_; }
    /// Where the last frame that next() gave ends; before the first, where the search begins.
    std::int64_t position() const { return position_; }
    /// After the end: whether a last frame is there whose end is missing.
    bool lastFrameCut() const { return lastFrameCut_; }

  private:
    std::optional<FrameHeader> headerAt(std::int64_t offset);
    int sizeOf(const FrameHeader& header, std::int64_t offset);
    int measureFreeFormat(const FrameHeader& header, std::int64_t offset);
    bool chainFrom(std::int64_t offset, int frames);
    std::optional<std::int64_t> search(std::int64_t from);
    std::optional<ScannedFrame> takeCut(const FrameHeader& header);
    ScannedFrame take(const FrameHeader& header, std::int64_t offset, std::int64_t junk);

    platform::file::WindowReader& reader_;
    TagRanges tags_;
    std::int64_t position_ = 0;
    std::optional<FrameHeader> last_;
    int freeFormatSize_ = 0;  // without padding
    bool lastFrameCut_ = false;
};

}  // namespace audio::mpeg
