// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "audio/codec/Ffmpeg.h"
#include "audio/codec/Sink.h"

namespace audio::codec {

/// How a container and codec are written through FFmpeg.
struct Recipe {
    const AVOutputFormat* muxer = nullptr;
    const AVCodec* encoder = nullptr;
    /// Frames of silence ahead of the sound, for an encoder that loses its first ones.
    int lead = 0;
    /// Frames at the start that are not encoded, where the container cannot state the codec's
    /// delay: what a decoder puts out then lies where it lay before.
    int cut = 0;
    /// The sound ends with a whole block of so many frames, filled up with silence; 0: anywhere.
    int block = 0;
    explicit operator bool() const { return muxer && encoder; }
};

/// The recipe for a format; empty where there is none.
Recipe recipeFor(const Format& format);

/// Writes what FFmpeg has an encoder and a muxer for.
class MuxerSink : public Encoder::Sink {
  public:
    MuxerSink(const std::filesystem::path& file, const Format& format, const Recipe& recipe);

    void write(const float* interleaved, std::size_t frames) override;
    void finish() override;

  private:
    void openEncoder(const Format& format);
    void openMuxer();
    void require(int result, const std::string& what) const;
    void take(const float* interleaved, std::size_t frames);
    void takeSilence(std::size_t frames);
    void encodeBlock(std::size_t frames);
    void fillFrame(const float* interleaved, std::size_t frames);
    static int asfPacketSize(int blockBytes);
    void send(const AVFrame* frame);
    std::size_t channels() const { return static_cast<std::size_t>(codec_->ch_layout.nb_channels); }

    std::filesystem::path file_;
    Recipe recipe_;
    CodecPtr codec_;
    OutputPtr muxer_;
    FramePtr frame_;
    PacketPtr packet_;
    std::vector<float> fifo_;
    std::size_t blockFrames_ = 0;  ///< frames the encoder takes at a time
    std::int64_t written_ = 0;     ///< by the caller
    std::int64_t taken_ = 0;       ///< into the FIFO
    std::int64_t encoded_ = 0;
    int cutLeft_ = 0;
    std::int64_t packets_ = 0;
    std::int64_t mostPackets_ = INT64_MAX;
    int quantum_ = 0;  ///< bits of a sample where the encoder's integers have more
};

}  // namespace audio::codec
