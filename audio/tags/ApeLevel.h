// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace audio::tags {

/// Where an APE tag lies in a stretch of bytes, header (version 2) and footer included.
struct ApePlace {
    std::size_t start = 0;
    std::size_t end = 0;
};

/// The first whole APE tag, version 1 or 2, in a stretch of bytes.
std::optional<ApePlace> findApeTag(std::span<const std::byte> bytes);

/// A whole APE tag without its items that state the sound's level, sizes and counts corrected; the
/// other items stay as they lie there. One that cannot be understood comes back as it is.
std::vector<std::byte> withoutLevelItems(std::span<const std::byte> tag);

}  // namespace audio::tags
