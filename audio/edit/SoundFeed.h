// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "audio/edit/Saver.h"
#include "audio/write/Encoder.h"

namespace audio::edit {

/// Feeds the sound of a job to an encoder: untouched PCM copied by the system out of the source,
/// everything else rendered ahead on a thread of its own, dithered where it is stored in 16 or
/// fewer bits. One thread; throws what reading and writing throw.
class SoundFeed {
  public:
    SoundFeed(const SaveJob& job, write::Encoder& encoder, Work& work);

    /// All of it. Returns how many frames of it are not copies of the source's.
    std::int64_t run();

  private:
    /// Neighbouring segments that are treated alike.
    struct Run {
        FrameRange range;
        bool untouched = false;  ///< of the source
        bool asItIs = false;     ///< its samples have their like in the output
        std::int64_t sourceStart = 0;
    };
    std::vector<Run> runs() const;
    bool keepsSamplesOf(const Segment& segment) const;
    void copyPcm(const Run& run);
    void render(const Run& run);
    void store(std::span<float> interleaved, bool dithered);
    std::uint64_t noiseStart(std::span<const float> first);

    const SaveJob& job_;
    write::Encoder& encoder_;
    Work& work_;
    bool copiesPcm_;            ///< the output's samples are the source's, byte for byte
    bool converts_;             ///< rate or channels change
    bool keepsSamples_;         ///< untouched samples have their like in the output
    int bits_;                  ///< of the output's integers; 0 where it has none
    std::int64_t written_ = 0;  ///< frames
    std::optional<std::uint64_t> noiseStart_;
};

}  // namespace audio::edit
