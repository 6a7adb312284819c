// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "platform/file/WindowReader.h"

namespace audio::tags {

/// The title, in UTF-8, of an ID3v2.3 or 2.4 tag at the start of a file that has frames with the
/// names of version 2.2, filled up with a blank or a zero ("TST ", "TSA "), as iTunes wrote them:
/// other readers stop at the first of those. Nothing where the tag has none before its title.
/// Throws platform::Error where the file cannot be read.
std::optional<std::string> titleBehindOldFrames(platform::file::WindowReader& reader);

}  // namespace audio::tags
