// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/mpeg/read/SourceSound.h"
#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {

/// The new sound by raw sample of the new stream: decoded source, rendered segments, and silence
/// outside. Source sound can be read anywhere and again; rendered sound once and in order, which is
/// how the callers of splice() are promised to be asked. One thread.
class OutputSound {
  public:
    /// `source` may be null where the plan has rendered segments alone. `start` = raw index of the
    /// plan's first sample; `sourceStart` = the same in the source.
    OutputSound(const std::vector<Segment>& plan, SourceSound* source, int channels,
                std::int64_t start, std::int64_t sourceStart);

    /// Fills interleaved floats with raw samples [from, from + count).
    void read(std::int64_t from, std::size_t count, float* interleaved);

  private:
    struct Placed {
        Segment segment;
        std::int64_t begin = 0;  // gapless
        std::int64_t asked = 0;  // samples of a rendered segment already asked for
    };
    std::size_t readPiece(std::int64_t at, std::size_t count, float* interleaved);

    std::vector<Placed> segments_;
    SourceSound* source_;
    std::size_t channels_;
    std::int64_t start_;
    std::int64_t sourceStart_;
};

}  // namespace audio::mpeg
