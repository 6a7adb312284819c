// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {

/// Passes a stream on to its sink, in large pieces, and notes what an info frame tells of it:
/// bytes, checksum, table of contents. One thread.
class StreamWriter {
  public:
    /// `frames` = frames of sound that will be written.
    StreamWriter(StreamSink& sink, std::int64_t frames);

    /// The info frame, before all else; it counts as no sound.
    void writeInfoFrame(std::span<const std::uint8_t> bytes);
    /// The next bytes of frames of sound.
    void write(std::span<const std::uint8_t> bytes);
    /// Tells of the next frame of sound, which will begin `ahead` bytes further than written.
    void noteFrame(std::span<const std::uint8_t> frame, std::int64_t ahead = 0);
    /// To be told of every frame too, with its number.
    using Listener = std::function<void(std::int64_t, std::span<const std::uint8_t>)>;
    void setListener(Listener listener) { listener_ = std::move(listener); }

    std::int64_t bytes() const { return bytes_; }
    std::int64_t framesNoted() const { return noted_; }
    std::uint16_t musicCrc() const { return crc_; }
    /// The hundred bytes of a Xing table of contents.
    std::array<std::uint8_t, 100> tableOfContents() const;
    /// Hands over what is still held back, and the info frame as it has become; the last call.
    void finish(std::span<const std::uint8_t> infoFrame);

  private:
    void pass(std::span<const std::uint8_t> bytes);

    StreamSink& sink_;
    std::int64_t frames_;
    std::int64_t bytes_ = 0;
    std::int64_t noted_ = 0;
    std::uint16_t crc_ = 0;
    std::vector<std::uint8_t> held_;  ///< written, but not yet passed on
    std::array<std::int64_t, 100> offsets_{};
    std::size_t filled_ = 0;
    Listener listener_;
};

}  // namespace audio::mpeg
