// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

#include "audio/tags/LevelFields.h"

namespace audio::tags {

/// Copies the fields and pictures that TagLib knows from one finished file into another, which may
/// be of another format: titles, several values of a field, unknown fields, cover art. For formats
/// whose tags are not carried byte for byte, and for conversions. Returns false where the target's
/// format has no tags that TagLib can write. Throws platform::Error where writing fails.
bool copyCommonTags(const std::filesystem::path& from, const std::filesystem::path& to,
                    LevelFields levels);

}  // namespace audio::tags
