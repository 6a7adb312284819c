// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace platform::file {

/// A new name for a temporary beside `target`, with its extension, which some readers go by; hidden
/// where a leading dot hides. Any thread.
std::filesystem::path temporaryBeside(const std::filesystem::path& target);

/// Removes the temporaries that processes which were killed left in a folder: ordinary files of
/// this user under such a name that no process holds (File::createNew). Looks once a process
/// into each folder; never throws. Any thread.
void removeLeftovers(const std::filesystem::path& folder) noexcept;

}  // namespace platform::file
