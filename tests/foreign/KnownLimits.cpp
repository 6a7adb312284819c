// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/foreign/KnownLimits.h"

#include <algorithm>
#include <array>

namespace foreign {
namespace {

/// A limit of every file whose name begins and ends so.
struct Limit {
    const char* begins;
    const char* holds;  ///< somewhere behind that
    const char* step;
    const char* reason;
};

constexpr const char* wholeVorbis =
    "Ogg Vorbis that is encoded whole comes nearer at every save to what libvorbis takes for its "
    "nominal rate; sweeps and noise at the ends of the scale are the worst of it";
constexpr const char* wholeAac =
    "raw AAC cannot say where its sound begins, so that it is encoded whole, and what its decoder "
    "makes up as noise is encoded again at every save";
constexpr const char* paddedPcm =
    "Wave64 pads its sound to eight bytes, which FFmpeg takes for the beginning of one frame more; "
    "all samples are right";
constexpr const char* oldWma =
    "after some jumps WMA 1 decodes otherwise than straight on; not yet understood";

constexpr std::array limits = {
    Limit{"vorbis-native ", "ogg", "save", wholeVorbis},
    Limit{"oggenc", "ogg", "save", wholeVorbis},
    Limit{"pcm24 ", "w64", "read", paddedPcm},
    Limit{"wmav1 ", "[2]", "read", oldWma},
    Limit{"aac-noise ", "aac", "save", wholeAac},
};

}  // namespace

std::string knownLimit(const std::string& file, const std::string& step) {
    const auto applies = [&](const Limit& limit) {
        return file.starts_with(limit.begins) && step == limit.step &&
               file.find(limit.holds) != std::string::npos;
    };
    const auto found = std::find_if(limits.begin(), limits.end(), applies);
    return found == limits.end() ? std::string() : found->reason;
}

}  // namespace foreign
