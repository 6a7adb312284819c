// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

namespace platform::file {

/// Told now and then how many bytes of how many have been copied, on the copying thread. False
/// abandons the copy.
using CopyProgress = std::function<bool(std::int64_t copied, std::int64_t total)>;

/// What happens to a file that already has the target's name.
enum class Existing { Replace, Refuse };

/// Copies one regular file with its modification time, by the fastest way the system has (shared
/// extents, copying inside the kernel, else reading and writing). The bytes go to a temporary in
/// the target's folder that takes the target's name when it is complete, so a file under that name
/// is always a whole one. It does not wait for the disk, and copies no extended attributes.
/// Blocks; any thread.
/// Throws Error, with the target as it was and the temporary gone, where the source cannot be read,
/// both names mean the same file (also through links), the target may not be written, is full or
/// cannot hold that name, or progress returned false.
void copy(const std::filesystem::path& source, const std::filesystem::path& target,
          Existing existing = Existing::Replace, const CopyProgress& progress = {});

}  // namespace platform::file
