// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio {

/// The sentence that names a file and what is wrong with it: "The file "x" cannot be opened."
inline platform::Error fileError(const std::filesystem::path& file, const std::string& what) {
    return platform::Error("The file \"" + platform::toUtf8(file) + "\" " + what + ".");
}

}  // namespace audio
