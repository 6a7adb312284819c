// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

// Each adds one command to the command line; it runs while the line is parsed.

/// `show LIST|FILE...`: number, duration, title and path of every entry, then the two totals.
void addShowCommand(CLI::App& app, Invocation& invocation);

/// `effect NAME [options] LIST|FILE...`: one of the batch effects on every file, in place or on
/// copies in another folder. Each file gets the value as given.
void addEffectCommand(CLI::App& app, Invocation& invocation);

/// `copy LIST --to DIR [--player]`: every file of a playlist into a folder, with temp.m3u naming
/// the copies; with --player the files alone, their paths made of DIR as typed and the file name,
/// without a separator between. The first file that fails ends the command; what has been copied
/// stays.
void addCopyCommand(CLI::App& app, Invocation& invocation);

/// `convert-list IN OUT`: writes a playlist again in the format that the new name's extension
/// says: m3u and m3u8 M3U, pls PLS. Missing files and URLs are kept. An existing file gives way as
/// a whole.
void addConvertListCommand(CLI::App& app, Invocation& invocation);

/// `transform LIST|FILE... --target DIR [options]`: every file into another folder, trimmed,
/// levelled and faded as asked, in one format. The files themselves are only read.
void addTransformCommand(CLI::App& app, Invocation& invocation);

/// `crossfade LIST|FILE... --target DIR [options] [--overlap S] [--burn-list FILE]`: as
/// `transform`, then each track's head is laid over the tail of the one before, so that the files
/// play as one mix.
void addCrossfadeCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
