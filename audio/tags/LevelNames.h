// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace audio::tags {

/// Whether a free-text field of this name states the sound's level: "replaygain_*", "R128_*_GAIN",
/// "iTunNORM", "MP3GAIN_*" in any case. Used for Vorbis comments, APE items, ID3v2 descriptions and
/// ASF attributes alike.
bool isLevelName(std::string_view name);

}  // namespace audio::tags
