// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace audio::tags {

/// The body of a FLAC cue sheet block (RFC 9639, section 8.7) with every place in it where `moved`
/// says that it lies now. Where all stay, the same bytes. A sheet of a disc whose places no longer
/// lie on the disc's sectors is one of a disc no more. One that cannot be understood comes back as
/// it is.
std::vector<std::uint8_t> movedCueSheet(
    const std::vector<std::uint8_t>& body,
    const std::function<std::int64_t(std::int64_t frame)>& moved);

}  // namespace audio::tags
