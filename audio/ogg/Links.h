// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "audio/FilePart.h"

namespace audio::ogg {

/// One link of an Ogg file.
struct Link {
    FilePart part;
    /// How its streams begin: the first bytes of each one's first page. Links that begin alike hold
    /// sound of the same codec, rate and channels.
    std::vector<std::uint8_t> heads;
};

/// The links of an Ogg file: one for most; several where files were chained by putting one behind
/// the other (RFC 3533, section 4). Found by the pages that begin streams; every page is read. Any
/// thread; throws platform::Error where the file cannot be read.
std::vector<Link> findLinks(const std::filesystem::path& file);

}  // namespace audio::ogg
