// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "audio/mpeg/splice/Splice.h"
#include "tests/audio/mpeg/MpegFiles.h"
#include "tests/audio/mpeg/splice/MemorySink.h"

namespace support {

/// Rendered sound that comes from memory, whose samples it counts.
audio::mpeg::SoundCallback soundFrom(std::shared_ptr<const Sound> sound, std::int64_t start = 0);
audio::mpeg::Segment renderedFrom(const Sound& sound, std::int64_t start, std::int64_t length);

/// [start, start + length) of a sound.
Sound part(const Sound& sound, std::int64_t start, std::int64_t length);
Sound joined(Sound left, const Sound& right);
/// A straight line of gain over the part, from a to b.
void fade(Sound& sound, std::int64_t start, std::int64_t length, float a, float b);

/// The largest difference in [start, end) of two sounds, either counted from its own offset.
float largestDifference(const Sound& a, std::int64_t aStart, const Sound& b, std::int64_t bStart,
                        std::int64_t length);
/// Mean square difference.
double meanSquare(const Sound& a, std::int64_t aStart, const Sound& b, std::int64_t bStart,
                  std::int64_t length);

/// Checks with this project's own eyes what a stream's info frame states: frames, bytes, both
/// checksums, and every frame's CRC where it has one. Adds failures to the running test.
void expectFieldsTrue(const std::filesystem::path& file);

}  // namespace support
