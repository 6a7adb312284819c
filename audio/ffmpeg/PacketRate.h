// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

namespace audio::ffmpeg {

/// The rate at which the sound of a file is coded, in bit/s: the mean over its own packets, never
/// the size of the file, in which cover art and page headers lie too. Packets that hold next to
/// nothing (digital silence) are left out, so that inserted silence does not lower it. 0 where the
/// file has no packet of known length. Reads the file once, without decoding. Throws
/// platform::Error where it cannot be opened. Any thread.
std::int64_t measureBitRate(const std::filesystem::path& file);

/// Whether the file states a title or any other field in a way that FFmpeg knows. Throws as above.
bool hasFields(const std::filesystem::path& file);

}  // namespace audio::ffmpeg
