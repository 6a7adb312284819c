// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace audio::tags {

/// What a list shows of a file. A plain value.
struct TrackInfo {
    std::string title;             ///< the title tag, UTF-8; may be empty
    std::int64_t durationMs = -1;  ///< -1 = unknown
};

/// Reads title and duration from the tags and headers of a local file, without decoding. The
/// duration is what the headers claim, held against the bytes that are there (the headers of
/// truncated and of joined files lie); it is near, not exact: the decoder knows better. A file that
/// is missing, is no regular file or holds nothing known yields an empty answer. Never throws; any
/// thread.
TrackInfo readTrackInfo(const std::filesystem::path& file) noexcept;

}  // namespace audio::tags
