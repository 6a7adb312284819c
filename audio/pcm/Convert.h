// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include "audio/pcm/SampleType.h"

namespace audio::pcm {

/// Turns `samples` little-endian PCM samples into floats, full scale ±1: value / 2^(bits-1), for
/// unsigned bytes (value - 128) / 128. Exact up to 24 bits and for floats; wider integers and
/// doubles are rounded to nearest. What is not a number becomes 0. Any thread. Throws
/// std::invalid_argument for SampleType::Lossy, as the function below.
void toFloats(SampleType type, const std::byte* bytes, float* out, std::size_t samples);

/// The other way: nearest value, limited to full scale (floats are not limited); not a number
/// becomes silence. A sample that toFloats() made of up to 24 bits comes back as it was. Any
/// thread.
void fromFloats(SampleType type, const float* in, std::byte* bytes, std::size_t samples);

}  // namespace audio::pcm
