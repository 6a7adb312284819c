// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/LevelNames.h"

#include <algorithm>
#include <array>
#include <string>

namespace audio::tags {

bool isLevelName(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    static constexpr std::array names{"r128_track_gain", "r128_album_gain", "itunnorm"};
    return lower.starts_with("replaygain_") || lower.starts_with("mp3gain_") ||
           std::find(names.begin(), names.end(), lower) != names.end();
}

}  // namespace audio::tags
