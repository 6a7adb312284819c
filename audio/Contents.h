// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace audio {

/// What lies in a file besides the one sound that is decoded; what a save could not carry.
struct Contents {
    int audioStreams = 1;
    int pictures = 0;      ///< attached cover art
    int otherStreams = 0;  ///< moving pictures, subtitles, data
    int chapters = 0;
    bool chained =
        false;  ///< several sounds one after the other (Ogg); known for sure after frames()
};

}  // namespace audio
