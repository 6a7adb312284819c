// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

#include "audio/read/Decoder.h"

namespace reading {

/// Everything from the decoder's place on, in reads of odd sizes.
inline std::vector<float> readAll(audio::read::Decoder& decoder) {
    const auto channels = static_cast<std::size_t>(decoder.format().channels);
    std::vector<float> all;
    std::vector<float> block(4'099 * channels);
    for (std::size_t size = 1; const std::size_t got = decoder.read(block.data(), size);
         size = size * 3 % 4'099 + 1)
        all.insert(all.end(), block.begin(), block.begin() + std::ptrdiff_t(got * channels));
    return all;
}

inline std::vector<float> readAll(const std::filesystem::path& file) {
    audio::read::Decoder decoder(file);
    return readAll(decoder);
}

}  // namespace reading
