// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/mpeg/encode/EncoderSettings.h"
#include "audio/mpeg/read/InfoTag.h"
#include "audio/mpeg/splice/Layout.h"
#include "audio/mpeg/splice/StreamWriter.h"

namespace audio::mpeg {

/// The info frame of a new stream: taken from the source where that one can state all that has to
/// be stated, else made anew. A value of bytes that is written first and again, filled in, at the
/// end.
class InfoFrame {
  public:
    /// A new one, with LAME's extension.
    InfoFrame(const EncoderSettings& settings, const FrameHeader& likeSound);
    /// The source's own frame.
    explicit InfoFrame(std::vector<std::uint8_t> source);

    const InfoTag& tag() const { return tag_; }
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

    /// States the new stream's frames, bytes, table of contents, delay and padding, as
    /// far as the frame has the fields; without `statesGaps`, delay and padding stay.
    void fillIn(const Layout& layout, const Geometry& geometry, const StreamWriter& writer);
    /// Clears the peak and gains.
    void clearLevels();
    /// States the music's length and checksum, and last of all the tag's own.
    void putChecksums(const StreamWriter& writer);

  private:
    void put(std::size_t offset, std::uint32_t value, std::size_t count);

    std::vector<std::uint8_t> bytes_;
    FrameHeader header_;
    InfoTag tag_;
};

}  // namespace audio::mpeg
