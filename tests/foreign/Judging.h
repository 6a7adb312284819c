// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

#include "tests/foreign/Foreign.h"

namespace foreign {

/// What is wrong with how a file is read; empty where nothing is. The length and every sample of a
/// straight read are those of the ffmpeg program, with two differences that are ours on purpose:
/// the padding that an MP4 track states is cut, and the ends of Vorbis in Ogg are those of oggdec.
/// Every one of `jumps` random jumps gives what the straight read gave there.
std::string faultOfReading(const std::filesystem::path& file, Likeness likeness, int jumps,
                           unsigned seed);

/// Whether the ffmpeg program knows a file; it does not read all that it writes.
bool ffmpegReads(const std::filesystem::path& file);

/// Whether this program opens a file.
bool opens(const std::filesystem::path& file);

}  // namespace foreign
