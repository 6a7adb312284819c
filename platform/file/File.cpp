// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/File.h"

namespace platform::file {

bool File::readAt(std::int64_t position, std::span<std::byte> bytes, std::error_code& error) const {
    while (!bytes.empty()) {
        const auto got = readSome(position, bytes, error);
        if (!got) return false;
        if (*got == 0) {
            error = std::make_error_code(std::errc::io_error);
            return false;
        }
        bytes = bytes.subspan(*got);
        position += static_cast<std::int64_t>(*got);
    }
    return true;
}

}  // namespace platform::file
