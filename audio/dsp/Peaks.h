// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace audio::dsp {

/// The outline of a whole sound for a display: its lowest and highest sample, over all channels, in
/// each of many equal spans. A plain value.
struct Peaks {
    struct Column {
        float low = 0;
        float high = 0;
    };
    std::vector<Column> columns;  ///< from the first frame to the last; empty for an empty sound
    double measured = 0;          ///< share of the sound measured so far, 0 … 1; the rest is zero
};

/// Makes Peaks from a sound that passes through it piece by piece. One thread at a time.
class PeakMeter {
  public:
    /// `frames` is the length of the whole sound; there are at most `columns` columns.
    PeakMeter(std::int64_t frames, int channels, std::size_t columns);

    /// The next frames, interleaved. What lies past the length is ignored.
    void add(const float* interleaved, std::size_t frames);
    /// What was measured up to now.
    const Peaks& peaks();

  private:
    std::size_t columnOf(std::int64_t frame) const;

    std::int64_t frames_;
    std::int64_t done_ = 0;
    std::size_t channels_;
    Peaks peaks_;
};

}  // namespace audio::dsp
