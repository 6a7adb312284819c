// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "audio/ffmpeg/Ffmpeg.h"

namespace audio::ffmpeg {

/// Turns packets of one stream into interleaved floats of a fixed number of channels. It knows no
/// files and no positions. One thread at a time.
class StreamDecoder {
  public:
    /// Throws platform::Error with FFmpeg's reason, without naming a file, where there is no
    /// decoder or it refuses. Trims that packets bear are left to the caller, or done here.
    enum class Trims { Left, Done };
    StreamDecoder(const AVCodecParameters& parameters, AVRational timeBase,
                  Trims trims = Trims::Done);

    struct Result {
        std::size_t frames = 0;  ///< appended
        bool damaged = false;    ///< the packet, or part of it, could not be decoded
    };
    /// Decodes one packet and appends what comes out. Null: the end, what is left comes out.
    Result decode(const AVPacket* packet, std::vector<float>& interleaved);

    /// Forgets what went before, as after a jump.
    void flush();

    int channels() const { return channels_; }
    int sampleRate() const { return codec_->sample_rate; }

  private:
    CodecPtr codec_;
    FramePtr frame_;
    int channels_ = 0;
};

/// The decoder to use for a codec: FFmpeg's default, but for MPEG audio the exact one.
const AVCodec* findDecoder(AVCodecID id);

}  // namespace audio::ffmpeg
