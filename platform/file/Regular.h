// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <system_error>

namespace platform::file {

/// Why nothing can be read from this path as from a file, links followed; none for a regular file.
/// A pipe or a socket would wait for whoever writes to it, a device such as /dev/zero never ends:
/// whoever opens a file that a person or a list names asks this first, and File opens nothing else.
/// A look-up; any thread.
std::error_code reasonAgainst(const std::filesystem::path& path);

/// Whether the path leads to a regular file.
bool isRegular(const std::filesystem::path& path);

/// The reason given where something is there and is no regular file: "it is not a regular file".
std::error_code notRegular();

}  // namespace platform::file
