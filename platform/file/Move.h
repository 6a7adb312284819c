// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace platform::file {

/// rename() that also crosses file systems: there it copies, and removes the old file when the
/// new one is complete. Never replaces a file. Throws Error; the file is then still under its old
/// name, or, where only the removal failed, under both.
void move(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace platform::file
