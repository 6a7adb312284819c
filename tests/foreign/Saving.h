// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

#include "tests/foreign/Foreign.h"

namespace foreign {

/// What ten saves of a file came to, a small fade each, saved over the one before.
struct Saving {
    std::string refusal;  ///< the sentence with which the first save was refused; else empty
    std::string fault;    ///< what is wrong with the file afterwards; empty: nothing
    double drift = 0;     ///< of the bytes in its packets, in percent
    double outside = 0;   ///< sound behind the edit against what it was, in dB; infinite: equal
    bool kept = false;    ///< every save copied what the edit did not touch
    const char* outcome() const;
};
/// Saves a file ten times over and has ffmpeg and ffprobe judge it: the length to the frame (or to
/// the block, where a format knows no other), the sound a second behind the edit, title and artist,
/// and the bytes that its sound takes. The file is changed; it should last some seconds.
Saving saveTenTimes(const std::filesystem::path& file, Likeness likeness);

/// What is wrong with the WAV file of 16 bits that this one is turned into; empty: nothing. As far
/// as ffmpeg decodes it, each of its samples is the source's, to the dither.
std::string faultOfTransform(const std::filesystem::path& file,
                             const std::filesystem::path& folder);

}  // namespace foreign
