// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace audio::vorbis {

/// Fills frames of the new sound, interleaved in WAVE's order of speakers, full scale ±1, from
/// `frame` on; all asked for lie inside the sound. Called on the thread that called splice() or
/// checkSplice(), mostly for ever later frames. What it throws ends the call.
using SoundReader = std::function<void(std::int64_t frame, std::size_t frames, float* interleaved)>;

/// Planes of sound, one for each channel in the order of Vorbis.
struct Planes {
    std::int64_t from = 0;  ///< frame that they begin with
    std::vector<std::vector<float>> channels;

    std::int64_t end() const { return from + static_cast<std::int64_t>(channels.front().size()); }
};

/// The new sound as planes, stretch after stretch; what two of them share is read once. Outside the
/// sound lies what nobody hears: the sound mirrored, or silence. One thread.
class SoundWindow {
  public:
    /// `frames` = length of the sound.
    SoundWindow(SoundReader reader, std::int64_t frames, int channels, bool silenceBefore);

    /// Frames [from, to), which may reach beyond the sound on both sides.
    Planes stretch(std::int64_t from, std::int64_t to);

  private:
    void load(std::int64_t from, std::int64_t to);

    SoundReader reader_;
    std::int64_t frames_;
    bool silenceBefore_;
    Planes loaded_;  ///< inside the sound
    std::vector<float> interleaved_;
};

}  // namespace audio::vorbis
