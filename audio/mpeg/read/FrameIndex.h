// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "audio/mpeg/read/FrameHeader.h"
#include "audio/mpeg/read/InfoTag.h"
#include "platform/file/WindowReader.h"

namespace audio::mpeg {

/// Bytes [offset, offset + size) of a file.
struct ByteRange {
    std::int64_t offset = 0;
    std::int64_t size = 0;
    std::int64_t end() const { return offset + size; }
};

/// Where every frame of an MPEG audio file lies, and how long its sound is exactly. In this folder
/// a "frame" is an MPEG frame, a "sample" one value per channel.
///
/// Two ways to count samples:
///   raw     what a decoder gives that drops nothing: frame i covers [i·spf, (i+1)·spf), the info
///           frame not counted, spf = header().samples();
///   gapless what a listener hears: gapless 0 = raw gaplessStart(), gaplessLength() samples long.
///
/// Built by reading every header; afterwards a plain value (8 bytes per frame) that any number of
/// threads may read.
class FrameIndex {
  public:
    /// Reads the whole file's headers. Throws platform::Error naming file and reason where it
    /// cannot be read or holds no MPEG audio frame.
    explicit FrameIndex(const std::filesystem::path& file);
    explicit FrameIndex(platform::file::WindowReader& reader);

    /// The header of the first frame of sound.
    const FrameHeader& header() const { return header_; }
    /// Frames of sound.
    std::int64_t frameCount() const { return static_cast<std::int64_t>(frames_.size()); }
    ByteRange frame(std::int64_t number) const;

    /// The first frame, where it holds a tag and no sound.
    const std::optional<InfoTag>& info() const { return info_; }
    /// That frame's bytes; empty where there is none.
    ByteRange infoFrame() const { return infoFrame_; }

    // The file is leading() + [info frame, frames] = audio() + (a start of a frame) + trailing().
    ByteRange leading() const { return {0, audio_.offset}; }  ///< tags and junk
    ByteRange audio() const { return audio_; }                ///< ends with the last frame
    ByteRange trailing() const { return trailing_; }          ///< junk and tags

    std::int64_t rawLength() const { return rawLength_; }
    std::int64_t gaplessStart() const { return gaplessStart_; }
    std::int64_t gaplessLength() const { return gaplessLength_; }
    /// Encoder delay and padding where the file states both and they can be true.
    bool statesGaps() const { return statesGaps_; }

    /// A change of version, layer, rate or channels from one frame to the next.
    struct Change {
        std::int64_t frame = 0;  ///< the first frame of the new kind
        FrameHeader header;
    };
    const std::vector<Change>& changes() const { return changes_; }
    /// Stretches between frames that are no frames: sync was lost there.
    const std::vector<ByteRange>& junk() const { return junk_; }
    /// The last frame lacks its end. Where it has some of its sound, it is one of the frames.
    bool lastFrameCut() const { return lastFrameCut_; }
    bool freeFormat() const { return header_.freeFormat(); }

    bool variableBitRate() const { return lowestBitRate_ != highestBitRate_; }
    /// Bits per second over all frames of sound, rounded to nearest.
    std::int64_t averageBitRate() const;

  private:
    void build(platform::file::WindowReader& reader);
    void addFrame(std::int64_t offset, int size, const FrameHeader& header);
    void findLength();

    FrameHeader header_;
    FrameHeader lastHeader_;
    std::vector<std::uint64_t> frames_;  // offset << 16 | size
    std::optional<InfoTag> info_;
    ByteRange infoFrame_;
    ByteRange audio_;
    ByteRange trailing_;
    std::vector<Change> changes_;
    std::vector<ByteRange> junk_;
    std::int64_t soundBytes_ = 0;
    std::int64_t rawLength_ = 0;
    std::int64_t gaplessStart_ = 0;
    std::int64_t gaplessLength_ = 0;
    int lowestBitRate_ = 0;
    int highestBitRate_ = 0;
    bool statesGaps_ = false;
    bool lastFrameCut_ = false;
};

/// The gapless start and length that follow from a file's tag and its count of frames: the rule
/// that FrameIndex uses, for a player that does not want to index the file first.
struct GaplessRange {
    std::int64_t start = 0;
    std::int64_t length = 0;
};
/// `rawLength` = samples of all frames; `info` null where the file has no tag. The stated padding
/// holds only where the stated count of frames is not exceeded: a file that two were joined into is
/// heard to its end.
GaplessRange gaplessRange(const FrameHeader& header, const InfoTag* info, std::int64_t rawLength);

}  // namespace audio::mpeg
