// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace audio::tags {

/// The size of the ID3v2 tag that begins these bytes, header and footer included; nothing where
/// there is none or it claims to be longer than they are.
std::optional<std::size_t> id3v2Size(std::span<const std::byte> bytes);

/// A whole ID3v2 tag (2.2, 2.3 or 2.4) without its frames that state the sound's level: RVA2, RVAD,
/// RVA, RGAD, and user texts and comments with the name of a level field. All other frames stay as
/// they lie there, synchronised or not, and padding keeps the tag's size; a tag with a footer,
/// which may have no padding, becomes shorter. A tag that cannot be understood, or that has a
/// checksum, comes back as it is.
std::vector<std::byte> withoutLevelFrames(std::span<const std::byte> tag);

}  // namespace audio::tags
