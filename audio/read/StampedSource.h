// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/read/StreamSource.h"

namespace audio::read {

/// Reads streams whose packets bear the exact number of their first frame (Ogg, FLAC, MP4, AIFF,
/// WavPack ...): a place is what the stamp says, so damage leaves a hole of the right length.
class StampedSource : public StreamSource {
  public:
    explicit StampedSource(ffmpeg::Input input);

    /// Whether the stamps of a container and codec are exact.
    static bool serves(const ffmpeg::Input& input);

  private:
    bool extendRun() override;
    void jumpBefore(std::int64_t frame) override;
    std::int64_t countFrames() override;
    std::int64_t countByDecoding();
    bool extendByPacket();
    void cutPadding();
    bool jumpTo(std::int64_t frame);
    std::int64_t frameOf(std::int64_t pts) const;
    std::int64_t stampOf(const ffmpeg::StreamDecoder::Result& result, std::int64_t expected) const;

    std::optional<std::int64_t> origin_;  ///< the stamp, in frames, of the sound's first frame
    bool placed_ = true;                  ///< the run's place is known
    /// Where the sound ends by the container's word, which counts no padding; -1: it has none.
    std::int64_t unpaddedEnd_ = -1;
};

}  // namespace audio::read
