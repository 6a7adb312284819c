// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

namespace audio::read {

/// What an MP4 or QuickTime file says of time, and FFmpeg does not pass on (ISO/IEC 14496-12,
/// sections 8.2.2 and 8.4.2). 0 where it is not found.
struct Mp4Times {
    std::int64_t movieScale = 0;     ///< units of a second that edit lists count in
    std::int64_t mediaScale = 0;     ///< units of a second that the track's samples count in
    std::int64_t mediaDuration = 0;  ///< of all samples of the track, in those
};

/// Reads the times of a file and of one of its tracks. Never throws; a few reads of some bytes.
Mp4Times readMp4Times(const std::filesystem::path& file, int track);

}  // namespace audio::read
