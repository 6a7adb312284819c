// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "audio/vorbis/Splice.h"
#include "tests/support/Sound.h"

/// Edits of Ogg Vorbis and what has to come out of them.
namespace vorbis_files {

/// A file that is edited: its index, and its sound as ffmpeg hears it, without what the stream says
/// to drop.
struct Source {
    explicit Source(const std::filesystem::path& file);
    std::filesystem::path file;
    audio::vorbis::PacketIndex index;
    support::Sound sound;
};

/// Frames of the new sound that have to be the source's to the last bit.
struct Exact {
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::int64_t sourceFrom = 0;
};

struct Edit {
    std::string name;
    std::vector<audio::vorbis::Segment> plan;
    std::vector<Exact> exact;
    support::Sound sound;  ///< all of it as it is meant
    bool needsEncoder = false;
};

/// A random edit: a fade, a gain, a trim, silence, a cut or an insertion on the grid or off it.
Edit randomEdit(const Source& source, std::mt19937& random);

struct Result {
    std::filesystem::path file;
    audio::vorbis::SpliceOutcome outcome;
};
/// Does the edit and has it checked, as the saver does. Throws CannotSplice.
Result apply(const Edit& edit, const Source& source, const std::filesystem::path& target,
             int threads = 0);

/// Judges the file by ffmpeg's decoder and by oggdec: its length, the untouched sound, and that the
/// rest is near to what was meant.
void judge(const Edit& edit, const Source& source, const Result& result);

}  // namespace vorbis_files
