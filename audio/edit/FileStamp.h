// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

namespace audio::edit {

/// What tells whether a file is still the one it was: its size and the time of its last change.
struct FileStamp {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type time;
    bool operator==(const FileStamp&) const = default;

    /// Throws platform::Error where there is no such file.
    static FileStamp of(const std::filesystem::path& file);
};

}  // namespace audio::edit
