// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace audio::pcm {

/// How a sample lies in a file, little-endian.
enum class PcmFormat { U8, S16, S24, S32, F32, F64 };

std::size_t bytesPerSample(PcmFormat format);

/// Triangular noise in (−1, +1) least significant bits for the sample of this index. It is drawn
/// from a fixed seed and the index alone, so the same edit writes the same bytes however the sound
/// is cut into blocks.
float ditherNoise(std::uint64_t sampleIndex);

/// Writes samples as integers or floats. Integers are rounded to nearest and limited to full scale,
/// never wrapped; those of 16 or fewer bits get triangular dither of one bit, but digital silence
/// stays digital silence. Floats are written as they are. `firstIndex` is the index of the first
/// sample in the file, counted over all channels. `bytes` holds samples × bytesPerSample.
void toPcm(std::span<const float> samples, PcmFormat format, std::uint64_t firstIndex,
           std::byte* bytes);

/// The reverse, exact but for 32-bit integers and 64-bit floats, which are rounded to a float.
void fromPcm(const std::byte* bytes, PcmFormat format, std::span<float> samples);

}  // namespace audio::pcm
