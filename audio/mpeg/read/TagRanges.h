// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "platform/file/WindowReader.h"

namespace audio::mpeg {

/// What lies around the sound of an MPEG audio file.
struct TagRanges {
    std::int64_t leadingEnd = 0;     ///< where the tags before the sound end
    std::int64_t trailingStart = 0;  ///< where the tags behind the sound begin
};

/// Finds ID3v2 (footers, several in a row) and APEv2 tags at the start, and ID3v1 with its
/// extension, APEv2, Lyrics3 and appended ID3v2 tags at the end. A tag that claims to be longer
/// than the file is not believed: it ends at its header. Junk is not looked for. Throws
/// platform::Error where the file cannot be read.
TagRanges findTags(platform::file::WindowReader& reader);

}  // namespace audio::mpeg
