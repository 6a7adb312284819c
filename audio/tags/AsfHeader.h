// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include "audio/tags/LevelFields.h"
#include "platform/file/Replacement.h"

namespace audio::tags {

/// Writes an ASF (WMA) file with the sound of `encoded` and the metadata of `source`: its objects
/// for content description, extended content description, metadata, metadata library, markers,
/// script commands, branding, language list and padding come over byte for byte; everything that
/// describes the stream is the encoded file's. Statements about the level are taken out of them
/// where asked. Throws platform::Error where either file is no ASF file.
void writeWithAsfMetadata(const std::filesystem::path& encoded, const std::filesystem::path& source,
                          LevelFields levels, platform::file::Replacement& file);

}  // namespace audio::tags
