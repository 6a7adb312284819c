// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <system_error>

#include "platform/file/Copy.h"

namespace platform::file {

/// The copying itself: creates `target`, which must not exist, with the bytes, permissions and
/// modification time of `source`. Returns the system's reason of a failure
/// (operation_canceled where progress returned false); the target may then exist in part.
std::error_code copyBytes(const std::filesystem::path& source, const std::filesystem::path& target,
                          const CopyProgress& progress);

}  // namespace platform::file
