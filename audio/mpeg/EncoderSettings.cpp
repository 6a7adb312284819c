// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/EncoderSettings.h"

#include <algorithm>

namespace audio::mpeg {

Version EncoderSettings::version() const {
    if (sampleRate >= 32000) return Version::Mpeg1;
    return sampleRate >= 16000 ? Version::Mpeg2 : Version::Mpeg25;
}

EncoderSettings EncoderSettings::cheaper(int steps) const {
    EncoderSettings lower = *this;
    if (rate == Rate::Quality) {
        lower.quality = std::min(9.9, quality + steps);
        return lower;
    }
    int index = 1;
    while (index < 14 && FrameHeader::bitRateOf(version(), layer, index + 1) <= bitRate) ++index;
    lower.bitRate = FrameHeader::bitRateOf(version(), layer, std::max(1, index - steps));
    return lower;
}

}  // namespace audio::mpeg
