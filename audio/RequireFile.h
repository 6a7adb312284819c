// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

#include "audio/FileError.h"
#include "platform/file/Regular.h"

namespace audio {

/// Throws where there is no regular file of this name to be read.
inline void requireFile(const std::filesystem::path& file) {
    const std::error_code reason = platform::file::reasonAgainst(file);
    if (reason == platform::file::notRegular()) throw fileError(file, "is not a regular file");
    if (reason == std::errc::no_such_file_or_directory) throw fileError(file, "does not exist");
    if (reason) throw fileError(file, "cannot be opened: " + reason.message());
}

}  // namespace audio
