// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/FileError.h"
#include "audio/Format.h"

namespace audio {

// What a header may state. Whatever is written here no known recorder exceeds; a header that does
// is damaged or hostile, and would cost memory and time out of all proportion to its file.
constexpr int mostChannels = 64;
constexpr int lowestRate = 100;         ///< Hz
constexpr int highestRate = 1'536'000;  ///< Hz

/// Throws platform::Error where a file states a form of sound outside these limits.
inline void requireWithinLimits(const std::filesystem::path& file, const Format& format) {
    if (format.channels > mostChannels)
        throw fileError(file, "states " + std::to_string(format.channels) + " channels; at most " +
                                  std::to_string(mostChannels) + " can be read");
    if (format.sampleRate < lowestRate || format.sampleRate > highestRate)
        throw fileError(file, "states a sampling rate of " + std::to_string(format.sampleRate) +
                                  " Hz, which cannot be");
}

}  // namespace audio
