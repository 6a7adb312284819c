// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/edit/EditList.h"

namespace audio::edit {

/// Where the sound of a file lies after an edit: for chapters, cue sheets and the like. A value;
/// any thread.
class PositionMap {
  public:
    /// `frames`: the length of the source.
    PositionMap(const EditList& list, const Material& source, std::int64_t frames);

    /// The frame of the edited sound at which this frame of the source now lies; where it has been
    /// cut out, the place of the cut. The source's end is the edited sound's.
    std::int64_t operator()(std::int64_t frame) const;

  private:
    /// A stretch of the source that is still there, or that an effect has replaced.
    struct Stretch {
        std::int64_t source = 0;
        std::int64_t edited = 0;
        std::int64_t frames = 0;
    };
    std::vector<Stretch> stretches_;  ///< in order
    std::int64_t sourceFrames_ = 0;
    std::int64_t editedFrames_ = 0;
};

}  // namespace audio::edit
