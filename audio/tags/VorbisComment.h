// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "audio/tags/LevelFields.h"

namespace audio::tags {

/// The comment packet of an Ogg Vorbis or Opus file as it lies there: all comments, their order and
/// case, pictures, the vendor text, and whatever follows them. Where statements about the level are
/// dropped, those comments go and the rest stays. Empty where there is none. Throws platform::Error
/// where the file cannot be read.
std::vector<std::uint8_t> readVorbisComment(const std::filesystem::path& file, LevelFields levels);

/// A comment packet without its statements about the level (REPLAYGAIN_*, R128_*_GAIN). One that
/// cannot be understood comes back as it is.
std::vector<std::uint8_t> withoutLevelComments(const std::vector<std::uint8_t>& packet);

}  // namespace audio::tags
