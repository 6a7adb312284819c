// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

#include <QString>

namespace wizard {

/// What an audio CD holds, in seconds.
inline constexpr double DiscSeconds = 80 * 60.0;

/// Where a track lies in the mix to come, in seconds from its beginning.
struct PlacedTrack {
    double start = 0;
    double seconds = 0;  ///< the whole track, its head over the tail of the one before
    double overlap = 0;  ///< how much of it is heard together with what went before
};

/// The mix to come, before silence is trimmed: what a preview draws. A plain value.
struct Timeline {
    std::vector<PlacedTrack> tracks;
    double seconds = 0;  ///< of all the results, played one after the other
};

/// Seconds as minutes and two digits of seconds, "75:04"; rounded.
QString clock(double seconds);

/// Lays tracks of these lengths, in seconds, one after the other, as the rounds join them
/// (overlap 0 = no cross fade). The head of a track, `overlap` long, ends where the sound before it
/// ends; where the file before is shorter than the head, both begin together and the head is heard
/// to its end. A track that is no longer than the overlap gives no head and begins where the one
/// before ends. A length of 0 is a track without sound: the others meet as if it were not there.
Timeline layOut(std::span<const double> lengths, double overlap);

/// The two fades of the pass as a shape: how long they are, 0 = none.
struct FadeShape {
    double inSeconds = 0;
    double outSeconds = 0;

    /// The gain, 0 to 1, `at` seconds into a track of this length.
    double gain(double at, double seconds) const;
};

}  // namespace wizard
