// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include <QStringList>

namespace support {

/// Decoded sound, whole, as another program than ours sees it.
struct Sound {
    std::vector<float> samples;  ///< interleaved, full scale ±1
    int rate = 0;
    int channels = 0;
    std::size_t frames() const { return channels ? samples.size() / std::size_t(channels) : 0; }
    /// A stretch of it, clipped to what is there.
    Sound part(std::size_t first, std::size_t count) const;
};

/// The independent judge of what lies in a file: the ffmpeg program (with its exact decoders, so
/// MP2 without dither). A file that it cannot read fails the test and comes out empty.
Sound decodeWithFfmpeg(const std::filesystem::path& file);

/// A second judge for MPEG audio: the mpg123 program, gapless as its default is.
Sound decodeWithMpg123(const std::filesystem::path& file);

/// The greatest difference of two samples in the same place; infinite where the lengths differ.
double maxDifference(const std::vector<float>& a, const std::vector<float>& b);

/// Energy of the reference over that of the difference, in dB, over the common length.
double snrDb(const std::vector<float>& reference, const std::vector<float>& other);

/// By how many frames the other lies behind the reference, -most to most: where the correlation of
/// their first channels, over the middle of the reference, is greatest.
int lagOf(const Sound& reference, const Sound& other, int most);

}  // namespace support
