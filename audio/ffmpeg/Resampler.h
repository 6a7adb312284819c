// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace audio::ffmpeg {

/// Converts the rate and the number of channels of a sound that passes through it piece by piece.
/// The result begins with the first frame's place (no delay) and is, after finish(), frames × out
/// rate / in rate long, rounded up. One thread at a time; throws platform::Error where it cannot
/// convert.
class Resampler {
  public:
    Resampler(int inRate, int inChannels, int outRate, int outChannels);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    /// Takes interleaved frames and appends to `out` (interleaved) what is ready.
    void push(const float* interleaved, std::size_t frames, std::vector<float>& out);
    /// Appends the rest. The resampler is empty afterwards and may take another sound.
    void finish(std::vector<float>& out);

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace audio::ffmpeg
