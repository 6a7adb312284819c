// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/encode/EncoderSettings.h"

#include <algorithm>
#include <cmath>

namespace audio::mpeg {

Version EncoderSettings::version() const {
    if (sampleRate >= 32000) return Version::Mpeg1;
    return sampleRate >= 16000 ? Version::Mpeg2 : Version::Mpeg25;
}

EncoderSettings EncoderSettings::cheaper(int steps) const {
    EncoderSettings lower = *this;
    if (rate == Rate::Quality) {
        lower.quality = std::min(9.9, quality + 0.5 * steps);
        return lower;
    }
    // Small steps first, so that many frames give way a little; an average may lie anywhere.
    constexpr int smallSteps = 8;
    const double factor = std::pow(0.94, std::min(steps, smallSteps)) *
                          std::pow(0.7, std::max(0, steps - smallSteps));
    const int lowest = FrameHeader::bitRateOf(version(), 3, 1);
    lower.rate = Rate::Average;
    lower.bitRate = std::max(lowest, static_cast<int>(bitRate * factor / 1000) * 1000);
    return lower;
}

}  // namespace audio::mpeg
