// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

/// `transform LIST|FILE... --target DIR [options]`: every file into another folder, trimmed,
/// levelled and faded as asked, in one format. The files themselves are only read.
void addTransformCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
