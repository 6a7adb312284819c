// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/PositionMap.h"

#include <algorithm>

namespace audio::edit {

PositionMap::PositionMap(const EditList& list, const Material& source, std::int64_t frames)
    : sourceFrames_(frames), editedFrames_(list.frames()) {
    std::int64_t position = 0;
    for (const Segment& segment : list.segments()) {
        if (segment.material.get() == &source)
            stretches_.push_back({segment.start, position, segment.frames});
        position += segment.frames;
    }
}

std::int64_t PositionMap::operator()(std::int64_t frame) const {
    if (frame >= sourceFrames_) return editedFrames_;
    Stretch before;                                  // what lies in front of the frame
    Stretch after{sourceFrames_, editedFrames_, 0};  // and behind it
    for (const Stretch& stretch : stretches_) {
        if (stretch.source + stretch.frames <= frame) {
            before = stretch;
        } else {
            after = stretch;
            break;
        }
    }
    if (frame >= after.source) return after.edited + (frame - after.source);
    // Between the two something was cut out, or an effect has put other sound in its place.
    const std::int64_t lost = frame - (before.source + before.frames);
    return std::min(before.edited + before.frames + lost, after.edited);
}

}  // namespace audio::edit
