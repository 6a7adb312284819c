// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/encode/EncoderSettings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace audio::mpeg {
namespace {

template <std::size_t Count>
int nearest(const std::array<int, Count>& choices, int wanted) {
    return *std::min_element(choices.begin(), choices.end(), [wanted](int a, int b) {
        return std::abs(a - wanted) < std::abs(b - wanted);
    });
}

}  // namespace

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

Format nearestMp3(int sampleRate, int kbps, int channels) {
    // ISO/IEC 11172-3 and 13818-3, Layer III; the three lowest rates are the usual 2.5 extension.
    constexpr std::array rates = {8'000,  11'025, 12'000, 16'000, 22'050,
                                  24'000, 32'000, 44'100, 48'000};
    constexpr std::array high = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
    constexpr std::array low = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
    Format format;
    format.container = Container::Mpeg;
    format.containerName = "mp3";
    format.codec = Codec::Mp3;
    format.codecName = "mp3";
    format.sampleRate = nearest(rates, sampleRate);
    format.channels = std::clamp(channels, 1, 2);
    format.bitRate = std::int64_t{1'000} *
                     (format.sampleRate >= 32'000 ? nearest(high, kbps) : nearest(low, kbps));
    return format;
}

}  // namespace audio::mpeg
