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
    for (const double length : lengths) {
        PlacedTrack track;
        track.seconds = length;
        track.start = mix.seconds;
        if (!mix.tracks.empty() && length > overlap) {
            track.overlap = overlap;
            track.start = std::max(mix.tracks.back().start, mix.seconds - overlap);
        }
        mix.seconds += length - track.overlap;
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
