// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "audio/Format.h"
#include "audio/tags/LevelFields.h"
#include "platform/file/Replacement.h"

namespace audio::tags {

/// New sound, and the file of the same container whose metadata it shall get.
struct Carriage {
    std::filesystem::path encoded;  ///< a finished file with the new sound, without metadata
    std::filesystem::path source;
    LevelFields levels = LevelFields::Keep;
    int sampleRate = 0;  ///< Hz, of both
    /// Where a frame of the source's sound lies in the new one.
    std::function<std::int64_t(std::int64_t frame)> moved;
};

/// Writes a file with the sound of `encoded` and the metadata of `source`, byte for byte as it lies
/// there but for statements about the level, where those are dropped, and positions in the sound.
/// Throws platform::Error naming the source where something in it cannot be carried over.
using Carrier = void (*)(const Carriage& carriage, platform::file::Replacement& file);

/// How the metadata of such a file is carried; null where its bytes cannot be.
Carrier carrierFor(const Format& format);

}  // namespace audio::tags
