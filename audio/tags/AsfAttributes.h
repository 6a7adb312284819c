// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace audio::tags {

/// The two ways in which an ASF object lists named values: extended content description, and
/// metadata with its library.
enum class AsfAttributeKind { Extended, Metadata };

/// The object without its statements about the level, its own size and count corrected. One that
/// cannot be understood comes back as it is.
std::vector<std::byte> withoutLevelAttributes(std::span<const std::byte> object,
                                              AsfAttributeKind kind);

}  // namespace audio::tags
