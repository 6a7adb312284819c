// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "platform/file/Temporary.h"

namespace platform::file {

/// Told now and then how many bytes of how many have been copied, on the copying thread. False
/// abandons the copy.
using CopyProgress = std::function<bool(std::int64_t copied, std::int64_t total)>;

/// What happens to a file that already has the target's name.
enum class Existing { Replace, Refuse };

/// Copies one regular file with its permissions and times (where the file system can hold them), by
/// the fastest way the system has (shared blocks, copying inside the kernel, else reading and
/// writing). The bytes go to a Temporary in the target's folder that takes the target's name when
/// it is complete, so a file under that name is always a whole one. Extended attributes are not
/// copied. With Sync::Now it is on the disk before it takes its name. Blocks; any thread.
/// Throws Error, with the target as it was and the temporary gone, where the source cannot be read,
/// both names mean the same file (also through links), the target may not be written, is full or
/// cannot hold that name, or progress returned false.
void copy(const std::filesystem::path& source, const std::filesystem::path& target,
          Existing existing = Existing::Replace, const CopyProgress& progress = {},
          Sync sync = Sync::Later);

}  // namespace platform::file
