// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// MP3 streams as programs other than LAME and FFmpeg begin them, put together byte by byte.
namespace foreign {

using Bytes = std::vector<std::uint8_t>;

/// The stream of a file without its info frame and without tags.
Bytes soundOf(const std::filesystem::path& file);

/// What a first frame says instead of sound, as bytes from the end of the side information on.
/// `flags`: 1 frames, 2 bytes, 4 table of contents, 8 quality.
Bytes xing(const Bytes& sound, unsigned flags, const Bytes& extension = {});
/// LAME's extension under any name, of which the first `size` bytes are there.
Bytes extension(const std::string& name, unsigned delay, unsigned padding, std::size_t size = 36);
/// The sound behind a frame that says this, in the smallest one that has at least `frameSize` bytes
/// and holds it.
Bytes behindXing(const Bytes& sound, const Bytes& says, std::size_t frameSize = 0);
/// The sound behind a VBRI frame of FhG's encoders: version 1, delay, quality, bytes, frames, and a
/// table of a hundred stretches of two bytes each.
Bytes behindVbri(const Bytes& sound, unsigned delay = 1159);

void write(const std::filesystem::path& file, const Bytes& bytes);

}  // namespace foreign
