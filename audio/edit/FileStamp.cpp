// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/FileStamp.h"

#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::edit {

FileStamp FileStamp::of(const std::filesystem::path& file) {
    std::error_code error;
    FileStamp stamp;
    stamp.size = std::filesystem::file_size(file, error);
    if (!error) stamp.time = std::filesystem::last_write_time(file, error);
    if (error)
        throw platform::Error("\"" + platform::toUtf8(file) +
                              "\" cannot be read: " + error.message() + ".");
    return stamp;
}

}  // namespace audio::edit
