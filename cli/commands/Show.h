// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

/// `show LIST|FILE...`: number, duration, title and path of every entry, then the two totals.
void addShowCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
