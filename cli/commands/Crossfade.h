// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

/// `crossfade LIST|FILE... --target DIR [options] [--overlap S] [--burn-list FILE]`: as
/// `transform`, then each track's head is laid over the tail of the one before, so that the files
/// play as one mix.
void addCrossfadeCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
