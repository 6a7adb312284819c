// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

#include "audio/FilePart.h"

namespace audio::ogg {

/// The links of an Ogg file: one for most; several where files were chained by putting one behind
/// the other (RFC 3533, section 4). Found by the pages that begin streams. Any thread; throws
/// platform::Error where the file cannot be read.
std::vector<FilePart> findLinks(const std::filesystem::path& file);

}  // namespace audio::ogg
