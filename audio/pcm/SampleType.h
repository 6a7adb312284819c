// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace audio::pcm {

/// How the samples of a sound lie in its file: integers (of one byte unsigned) or floats; Lossy
/// where they are not samples at all.
enum class SampleType { U8, S16, S24, S32, S64, F32, F64, Lossy };

/// Bytes of one sample of one channel of PCM; 0 for SampleType::Lossy.
std::size_t bytesPerSample(SampleType type);

/// The narrowest signed integer that holds so many bits.
SampleType integerOf(int bits);

}  // namespace audio::pcm
