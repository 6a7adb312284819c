// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/mpeg/read/FrameHeader.h"

namespace audio::write {

/// The Info frame that stands ahead of an MP3 stream of constant bit-rate and tells its length,
/// delay and padding. LAME writes one itself but where its frames are too small to hold it; there
/// this one, of a higher bit-rate than the sound's, takes its place.
class Mp3InfoFrame {
  public:
    /// `sound`: the header of the sound's frames.
    explicit Mp3InfoFrame(const mpeg::FrameHeader& sound);

    /// Whether a frame with this header has room for the tag, so that LAME writes one.
    static bool fitsInto(const mpeg::FrameHeader& header);

    /// Takes in what follows it in the file, piece by piece.
    void follow(const unsigned char* bytes, std::size_t count);

    /// The frame; its size does not depend on what it tells. `frames` of sound, delay and padding
    /// in samples as LAME counts them.
    std::vector<std::uint8_t> bytes(std::uint32_t frames, int delay, int padding) const;

  private:
    mpeg::FrameHeader header_;
    std::uint32_t musicBytes_ = 0;
    std::uint16_t musicCrc_ = 0;
};

}  // namespace audio::write
