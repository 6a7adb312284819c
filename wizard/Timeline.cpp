// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Timeline.h"

#include <algorithm>
#include <cmath>

namespace wizard {

namespace {

constexpr double LowLevel = 0.1;  // where the fade in begins and the fade out ends

}  // namespace

QString clock(double seconds) {
    const auto whole = std::llround(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

Timeline layOut(std::span<const double> lengths, double overlap) {
    Timeline mix;
    double file = 0;  // where the file of the nearest earlier track with sound begins
    for (const double length : lengths) {
        PlacedTrack track{mix.seconds, length, 0};
        const bool givesHead = mix.seconds > 0 && length > overlap;
        if (givesHead) track.start = std::max(file, mix.seconds - overlap);
        track.overlap = mix.seconds - track.start;
        if (length > 0) file = track.start + (givesHead ? overlap : 0);
        mix.seconds = track.start + length;
        mix.tracks.push_back(track);
    }
    return mix;
}

double FadeShape::gain(double at, double seconds) const {
    double gain = 1;
    if (inSeconds > 0 && at < std::min(inSeconds, seconds))
        gain *= LowLevel + (1 - LowLevel) * at / std::min(inSeconds, seconds);
    const double left = seconds - at;
    if (outSeconds > 0 && left < std::min(outSeconds, seconds))
        gain *= LowLevel + (1 - LowLevel) * left / std::min(outSeconds, seconds);
    return gain;
}

}  // namespace wizard
