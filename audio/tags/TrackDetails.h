// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace audio::tags {

/// What a desktop shows of the file that plays, beyond its title. A plain value.
struct TrackDetails {
    std::vector<std::string> artists;  ///< UTF-8
    std::string album;                 ///< UTF-8; may be empty
    std::vector<char> art;             ///< the front cover, else the first picture; may be empty
    std::string artType;               ///< its MIME type
};

/// Reads them from the tags of a local file, with TagLib. A file that is missing, is no regular
/// file or has no tags yields an empty answer. Never throws; any thread.
TrackDetails readTrackDetails(const std::filesystem::path& file) noexcept;

}  // namespace audio::tags
