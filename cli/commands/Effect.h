// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

/// `effect NAME [options] LIST|FILE...`: one of the batch effects on every file, in place or on
/// copies in another folder. Each file gets the value as given.
void addEffectCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
