// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/ReadWhole.h"

#include <algorithm>
#include <span>

#include "platform/file/File.h"

namespace platform::file {

std::optional<QByteArray> readWhole(const std::filesystem::path& path, std::int64_t most,
                                    std::error_code& reason) {
    File file;
    if (!file.openForReading(path, reason)) return {};
    const auto about = file.stamp(reason);
    if (!about) return {};
    // One byte more than it says, and than it may: so both its end and too much of it are seen.
    QByteArray bytes(std::min(about->size, most) + 1, Qt::Uninitialized);
    qsizetype got = 0;
    for (;;) {
        const auto room =
            std::as_writable_bytes(std::span(bytes.data(), bytes.size())).subspan(got);
        const auto more = file.readSome(got, room, reason);
        if (!more) return {};
        got += static_cast<qsizetype>(*more);
        if (*more == 0) break;
        if (got > most) {
            reason = std::make_error_code(std::errc::file_too_large);
            return {};
        }
        if (got == bytes.size()) bytes.resize(std::min<std::int64_t>(2 * got, most + 1));
    }
    bytes.truncate(got);
    return bytes;
}

}  // namespace platform::file
