// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "audio/ffmpeg/Recipe.h"

namespace audio::ffmpeg {

/// Gets a packet, which it may move from.
using TakePacket = std::function<void(AVPacket& packet)>;

/// One of FFmpeg's encoders: sound goes in block by block, packets come out, stamped in frames. One
/// thread at a time. Errors are platform::Error and name the file that is being written.
class BlockEncoder {
  public:
    BlockEncoder(const std::filesystem::path& file, const Format& format, const Recipe& recipe);

    const AVCodecContext& context() const { return *codec_; }
    std::size_t channels() const { return static_cast<std::size_t>(codec_->ch_layout.nb_channels); }
    /// The frames that it takes at a time; the last time it may be fewer.
    std::size_t blockFrames() const { return blockFrames_; }

    /// Encodes interleaved frames, the first of them frame number `stamp` of all.
    void encode(const float* interleaved, std::size_t frames, std::int64_t stamp,
                const TakePacket& take);
    /// A whole block of which the encoder only has to know.
    void warmUp(const float* interleaved, std::int64_t stamp);
    /// Gets what the encoder still holds.
    void finish(const TakePacket& take);

  private:
    void open(const Format& format, const Recipe& recipe);
    void fillFrame(const float* interleaved, std::size_t frames, std::int64_t stamp);
    void send(const AVFrame* frame, const TakePacket& take);
    void require(int result, const std::string& what) const;

    std::filesystem::path file_;
    CodecPtr codec_;
    FramePtr frame_;
    PacketPtr packet_;
    std::size_t blockFrames_ = 0;
    int integerBits_ = 32;  ///< of a sample where the encoder takes integers of 32
};

}  // namespace audio::ffmpeg
