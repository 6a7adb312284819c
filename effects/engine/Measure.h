// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "audio/edit/EditList.h"
#include "audio/edit/Work.h"

namespace effects {

/// The highest absolute samples of a range: one for all channels together where they are linked,
/// else one for each. One pass over the range, on every core. Worker thread; throws what reading
/// throws.
std::vector<float> measurePeaks(const audio::edit::EditList& list, audio::FrameRange range,
                                bool linked, audio::edit::Work& work);

/// Whether a sound with this peak is taken for silence: below -60 dBFS, where nothing but noise is.
bool countsAsSilence(float peak);
/// Why a sound with this peak was not normalized, as a sentence for a person.
std::string notNormalized(float peak);

struct SilenceSettings {
    double threshold = -20;  ///< LU, the sign does not matter
    double windowMs = 100;
    int bits = 16;          ///< of the file's samples, to tell silence at a cut from soft sound
    std::int64_t grid = 1;  ///< frames: what is left begins and ends at multiples of it
};

/// What is left of a range when the silence at its ends goes, in frames of the list; and whether
/// each end, were it cut, has sound that has to be faded: 5 ms of it.
struct AudibleRange {
    audio::FrameRange kept;
    bool soundAtStart = false;
    bool soundAtEnd = false;
    std::int64_t fadeFrames = 0;
};
/// One pass over the range, on every core, and a second look at its ends. Worker thread; throws
/// what reading throws.
AudibleRange measureAudible(const audio::edit::EditList& list, audio::FrameRange range,
                            const SilenceSettings& settings, audio::edit::Work& work);

}  // namespace effects
