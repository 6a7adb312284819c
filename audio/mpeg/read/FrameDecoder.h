// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "audio/ffmpeg/Owners.h"
#include "audio/mpeg/read/DamageLimiter.h"
#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// Decodes MPEG audio frames one by one, dropping nothing: FFmpeg's float decoders. One thread at a
/// time.
class FrameDecoder {
  public:
    /// Throws platform::Error where FFmpeg was built without the decoder.
    explicit FrameDecoder(const FrameHeader& header);

    /// Forgets the frames before, as at the start of a stream.
    void reset();
    /// The frame's samples, interleaved; silence where it cannot be decoded, nothing above full
    /// scale where it is damaged. Valid until the next call.
    const std::vector<float>& decode(std::span<const std::uint8_t> frame);

  private:
    void takeFrame();

    ffmpeg::CodecPtr context_;
    ffmpeg::PacketPtr packet_;
    ffmpeg::FramePtr frame_;
    DamageLimiter limiter_;
    std::vector<std::uint8_t> input_;
    std::vector<float> output_;
    std::size_t samples_ = 0;
    std::size_t channels_ = 0;
};

}  // namespace audio::mpeg
