// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include <QByteArray>

namespace platform::file {

/// All bytes of a regular file. Nothing, and the reason, where it cannot be read or holds more than
/// `most` bytes (std::errc::file_too_large). Blocks; any thread.
std::optional<QByteArray> readWhole(const std::filesystem::path& path, std::int64_t most,
                                    std::error_code& reason);

}  // namespace platform::file
