// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

/// `copy LIST --to DIR [--player]`: every file of a playlist into a folder, with temp.m3u naming
/// the copies; with --player the files alone, their paths made of DIR as typed and the file name,
/// without a separator between. The first file that fails ends the command; what has been copied
/// stays.
void addCopyCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
