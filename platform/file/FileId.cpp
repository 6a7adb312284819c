// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/FileId.h"

#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/File.h"

namespace platform::file {

bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    const auto id = idOf(one);
    return id && id == idOf(other);
}

Stamp Stamp::of(const std::filesystem::path& path) {
    std::error_code error;
    if (const auto stamp = stampOf(path, error)) return *stamp;
    throw systemError("\"" + toUtf8(path) + "\" cannot be read", error);
}

}  // namespace platform::file
