// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "audio/ffmpeg/Ffmpeg.h"
#include "audio/ffmpeg/StreamDecoder.h"
#include "audio/mpeg/read/DamageLimiter.h"
#include "audio/mpeg/read/FrameScanner.h"
#include "audio/mpeg/read/InfoTag.h"
#include "audio/read/Source.h"
#include "platform/file/WindowReader.h"

namespace audio::read {

/// Reads an MPEG audio file frame by frame. The table of frames grows as reading and seeking need
/// it, so that a long file plays at once; frames() completes it. Its positions are the gapless ones
/// of audio::mpeg::FrameIndex, its raw ones those of the decoder.
class MpegSource : public Decoder::Source {
  public:
    explicit MpegSource(const std::filesystem::path& file);

    std::int64_t frames() override;
    std::int64_t estimatedFrames() const override { return estimate_; }
    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;
    std::int64_t position() const override { return position_; }

  private:
    /// Ten hours have 1.4 million of them, in every decoder of the file: kept small.
    struct Entry {
        std::int64_t offset : 46;
        std::int64_t size : 18;  ///< 0: it was lost and is silence
        std::int64_t raw : 46;   ///< its first sample
        std::int64_t samples : 18;
    };

    void describe();
    void describeBitRate();
    bool scanOne();
    void bridge(const mpeg::ScannedFrame& frame);
    void scanAll();
    void settle();
    bool knows(std::size_t number);
    std::int64_t rawEnd() const;
    bool beyondSound(std::int64_t raw);
    bool decodeNext();
    void restartBefore(std::size_t number);

    std::filesystem::path file_;
    platform::file::WindowReader reader_;
    mpeg::FrameScanner scanner_;
    mpeg::FrameHeader header_;
    std::optional<mpeg::InfoTag> info_;
    std::deque<Entry> table_;
    bool complete_ = false;  ///< the table holds every frame
    int lowestBitRate_ = 0;
    int highestBitRate_ = 0;
    std::int64_t soundBytes_ = 0;

    std::optional<ffmpeg::StreamDecoder> decoder_;
    mpeg::DamageLimiter limiter_;
    ffmpeg::PacketPtr packet_;
    std::vector<float> pending_;  ///< one decoded frame
    std::int64_t pendingRaw_ = 0;
    std::size_t next_ = 0;  ///< the frame to decode next
    std::size_t warm_ = 0;  ///< from this frame on the decoder gives what an unbroken run gives

    std::int64_t start_ = 0;      ///< raw place of position 0
    std::int64_t statedEnd_ = 0;  ///< raw end by the tag; valid unless the file holds more frames
    std::int64_t estimate_ = -1;
    std::int64_t position_ = 0;
};

}  // namespace audio::read
