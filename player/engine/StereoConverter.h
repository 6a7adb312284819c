// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "audio/ffmpeg/Resampler.h"

namespace player {

/// Turns the frames of sources, one after the other, into stereo at the device's rate. Stereo at
/// that rate comes through as it is, and mono twice. Sources of one form that follow each other are
/// one sound: no frame is lost or added where they meet. One thread at a time.
class StereoConverter {
  public:
    StereoConverter(int inRate, int inChannels, int outRate);

    bool takes(int inRate, int inChannels, int outRate) const {
        return inRate == inRate_ && inChannels == inChannels_ && outRate == outRate_;
    }
    int outRate() const { return outRate_; }

    /// Appends what is ready to `out`, interleaved stereo.
    void push(const float* interleaved, std::size_t frames, std::vector<float>& out);
    /// Appends the rest; the next sound begins anew.
    void finish(std::vector<float>& out);

    /// Where the next frame pushed will lie, counted in frames of the result since the start.
    std::int64_t place() const;

  private:
    int inRate_;
    int inChannels_;
    int outRate_;
    std::unique_ptr<audio::ffmpeg::Resampler> resampler_;  // where one is needed
    std::vector<float> stereo_;                            // of a mono source
    std::int64_t taken_ = 0;
};

}  // namespace player
