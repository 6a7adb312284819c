// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>

#include <QString>

#include "tests/support/Sound.h"

/// The arithmetic of every operation in the plainest form and in double precision, on sound that an
/// independent decoder gave; and what encoding that once with another program leaves of it.
namespace ideal {

using support::Sound;

/// A straight line from a to b (factors) over frames [start, end): first frame a, last frame b.
Sound faded(Sound sound, std::size_t start, std::size_t end, double a, double b);
Sound normalized(Sound sound, double level);
Sound withSilence(Sound sound, std::size_t at, std::size_t frames);
Sound without(Sound sound, std::size_t start, std::size_t end);
Sound echoed(const Sound& sound, double time, double depth, double gain, double rate, double cutoff,
             int count);
/// Frame k of the other sound is added at start + k, the sum over the whole of both.
Sound mixed(Sound sound, const Sound& other, std::ptrdiff_t start, double a, double b);
/// Limited to what integers can hold.
Sound limited(Sound sound);

double highest(const Sound& sound);

/// The SNR in dB, against the sound, of encoding it once with ffmpeg and decoding it again.
/// `encoder` as ffmpeg's options, separated by blanks; `lost` = frames that this encoder drops from
/// the start.
double snrOfEncodingOnce(const Sound& sound, const QString& encoder, const QString& extension,
                         std::size_t lost);

}  // namespace ideal
