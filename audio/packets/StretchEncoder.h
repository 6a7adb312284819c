// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>

#include "audio/Format.h"
#include "audio/packets/Grid.h"

namespace audio::packets {

/// Fills interleaved frames from a decoded frame of the new stream on, which its sound begins
/// `skip` frames behind; silence where there is no sound.
using StreamSound = std::function<void(std::int64_t frame, std::size_t frames, float* interleaved)>;

/// Gets a packet; false: no more of them.
using TakePacket = std::function<bool(std::span<const std::uint8_t> packet)>;

/// Encodes packet `first` of a new stream and those behind it, until `take` has enough. The encoder
/// hears a fifth of a second of what lies before, so that it is in step. Errors name the file.
/// Throws CannotJoin where the encoder has no packets of that size.
void encodeFrom(std::int64_t first, const Grid& grid, const std::filesystem::path& file,
                const Format& format, const StreamSound& sound, const TakePacket& take);

}  // namespace audio::packets
