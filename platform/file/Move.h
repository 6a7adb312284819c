// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <system_error>

namespace platform::file {

/// Gives a file a new name on the same file system and never replaces what already has that name.
/// A change of letter case alone works on file systems that do not tell cases apart. Any thread.
/// Throws Error, with both names as they were, where the new name exists, cannot be held by the
/// file system or lies on another one, or the old one is missing or no regular file (a folder, a
/// pipe).
void rename(const std::filesystem::path& from, const std::filesystem::path& to);

/// The same, returning the system's reason (none = done).
std::error_code tryRename(const std::filesystem::path& from, const std::filesystem::path& to);

/// What tryRename falls back to on file systems that have no rename without replacing: it takes the
/// new name with an empty file first, and renames over that.
std::error_code renameOverReservation(const std::filesystem::path& from,
                                      const std::filesystem::path& to);

/// rename() that also crosses file systems: there it copies, and removes the old file when the new
/// one is complete and on the disk. Never replaces a file. Throws Error; the file is then still
/// under its old name, or, where only the removal failed, under both.
void move(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace platform::file
