// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "audio/ffmpeg/Input.h"
#include "audio/ffmpeg/StreamDecoder.h"
#include "audio/read/Source.h"

namespace audio::read {

/// What is common to all that FFmpeg demuxes: packets are decoded into a run of frames whose place
/// is known, and read() cuts the run to where it was asked to begin. How the place of a packet is
/// known is what the two kinds below differ in.
class StreamSource : public Decoder::Source {
  public:
    std::int64_t estimatedFrames() const override;
    std::int64_t frames() override;
    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;
    std::int64_t position() const override { return position_; }

  protected:
    explicit StreamSource(ffmpeg::Input input);

    /// Decodes on until the run has grown; false at the end of the stream.
    virtual bool extendRun() = 0;
    /// Makes the run begin at or before a frame, which lies inside the sound.
    virtual void jumpBefore(std::int64_t frame) = 0;
    /// The exact length, without disturbing the run (or with a jump back to it).
    virtual std::int64_t countFrames() = 0;

    void startRun(std::int64_t frame);
    void appendSilence(std::int64_t frames);
    std::int64_t runEnd() const;
    std::size_t channels() const { return static_cast<std::size_t>(format_.channels); }
    /// Decodes the next packet, or at the end what the decoder still holds, onto the run.
    struct Step {
        bool end = false;
        ffmpeg::StreamDecoder::Result result;
    };
    Step decodePacket();
    void rewindStream();

    ffmpeg::Input input_;
    ffmpeg::StreamDecoder decoder_;
    ffmpeg::PacketPtr packet_;
    std::vector<float> run_;     ///< decoded frames that were not all read yet
    std::int64_t runStart_ = 0;  ///< the frame the run begins with
    bool drained_ = false;       ///< the decoder has given its last
    std::int64_t position_ = 0;
    std::optional<std::int64_t> frames_;
};

}  // namespace audio::read
