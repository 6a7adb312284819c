// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "cli/MixRun.h"

namespace CLI {
class App;
}

namespace cli {

/// The options that `transform` and `crossfade` share, as they are typed.
struct MixOptions {
    std::vector<std::string> arguments;
    std::string target;
    bool trim = false;
    bool normalize = false;
    double fadeOut = 0;  ///< seconds; 0 = none
    double fadeIn = 0;   ///< seconds; 0 = none
    std::string format = "wav";
    int frequency = 44100;
    int bits = 16;
    int bitrate = 128;
    int channels = 2;
    bool stripTags = false;

    void addTo(CLI::App& command);

    /// The run they ask for, its files named by the arguments; makes the target folder. Throws
    /// platform::Error where that is not possible.
    MixRun toRun(Report& report) const;
};

}  // namespace cli
