// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <ebur128.h>

#include "audio/dsp/WindowGrid.h"

/// Loudness by ITU-R BS.1770, measured by libebur128. Meters are fed interleaved frames in order;
/// different meters may be fed on different threads at a time.
namespace audio::dsp {

/// A sound of which loudness is measured. A plain value.
struct LoudnessShape {
    int sampleRate = 0;
    int channels = 0;
};

/// An owner of libebur128's state.
class LoudnessState {
  public:
    /// `windowMs`: the longest stretch that will be asked for. Throws platform::Error for a rate or
    /// number of channels that cannot be measured.
    LoudnessState(const LoudnessShape& shape, double windowMs);

    void add(std::span<const float> interleaved);
    ebur128_state* get() const { return state_.get(); }

  private:
    struct Destroy {
        void operator()(ebur128_state* state) const;
    };
    std::size_t channels_;
    std::unique_ptr<ebur128_state, Destroy> state_;
};

/// Gathers the gating blocks of a stretch of sound: 400 ms long, one every 100 ms (BS.1770-4,
/// annex 1). A sound may be measured in several stretches: each but the first begins
/// `leadFrames()` before the end of the one before it, which begins at a multiple of
/// `stepFrames()`, so that no block is lost and none counted twice.
class GatingMeter {
  public:
    explicit GatingMeter(const LoudnessShape& shape) : state_(shape, 0) {}

    void add(std::span<const float> interleaved) { state_.add(interleaved); }

    static std::int64_t stepFrames(int sampleRate) { return (sampleRate + 5) / 10; }
    static std::int64_t leadFrames(int sampleRate) { return 3 * stepFrames(sampleRate); }

    /// The gated loudness of all that the stretches hold, in LUFS; −∞ where it is silent or shorter
    /// than one block.
    static double gatedLoudness(const std::vector<GatingMeter>& stretches);

  private:
    LoudnessState state_;
};

/// Measures some windows of a grid.
class WindowMeter {
  public:
    /// Windows from number `first` on.
    WindowMeter(const LoudnessShape& shape, const WindowGrid& grid, std::size_t first);

    /// The frame that has to be fed first: far enough ahead for the filters to settle.
    std::int64_t start() const { return start_; }
    void add(std::span<const float> interleaved);
    /// LUFS of window `first` and those behind it, as far as sound was fed; −∞ for silence.
    const std::vector<float>& windows() const { return windows_; }

  private:
    void measure();

    LoudnessState state_;
    std::size_t channels_;
    const WindowGrid& grid_;
    std::size_t next_;
    std::int64_t start_;
    std::int64_t at_;  // the next frame to be fed
    std::vector<float> windows_;
};

}  // namespace audio::dsp
