// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "audio/edit/EditList.h"
#include "audio/edit/Work.h"

namespace effects {

/// The highest absolute samples of a range: one for all channels together where they are linked,
/// else one for each. One pass over the range, on every core. Worker thread; throws what reading
/// throws.
std::vector<float> measurePeaks(const audio::edit::EditList& list, audio::FrameRange range,
                                bool linked, audio::edit::Work& work);

struct SilenceSettings {
    double threshold = -20;  ///< LU, the sign does not matter
    double windowMs = 100;
};

/// What is left of a range when the silence at its ends goes; in frames of the list. One pass over
/// the range, on every core, and a second look at its ends. Worker thread; throws what reading
/// throws.
audio::FrameRange measureAudible(const audio::edit::EditList& list, audio::FrameRange range,
                                 const SilenceSettings& settings, audio::edit::Work& work);

}  // namespace effects
