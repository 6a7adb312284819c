// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "audio/ffmpeg/Muxer.h"
#include "audio/ffmpeg/ParallelBlocks.h"
#include "audio/write/Sink.h"

namespace audio::write {

/// Writes what FFmpeg has an encoder and a muxer for.
class MuxerSink : public Encoder::Sink {
  public:
    /// `threads`: how many encode where the recipe lets several; 0: one for each core.
    MuxerSink(const std::filesystem::path& file, const Format& format, const ffmpeg::Recipe& recipe,
              int threads);

    void write(const float* interleaved, std::size_t frames) override;
    void finish() override;

  private:
    void take(const float* interleaved, std::size_t frames);
    void takeSilence(std::size_t frames);
    void encodeBlock(std::size_t frames);
    void encode(const float* interleaved, std::size_t frames);
    void put(AVPacket& packet);
    std::size_t channels() const { return encoder_.channels(); }

    ffmpeg::Recipe recipe_;
    ffmpeg::BlockEncoder encoder_;
    ffmpeg::Muxer muxer_;
    std::optional<ffmpeg::ParallelBlocks> parallel_;  ///< encodes in its place
    std::vector<float> fifo_;
    std::int64_t written_ = 0;  ///< by the caller
    std::int64_t taken_ = 0;    ///< into the FIFO
    std::int64_t encoded_ = 0;
    int cutLeft_ = 0;
    std::int64_t packets_ = 0;
    std::int64_t mostPackets_ = INT64_MAX;
};

}  // namespace audio::write
