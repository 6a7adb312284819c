// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace cli {

class Invocation;

/// `convert-list IN OUT`: writes a playlist again in the format that the new name's extension
/// says: m3u and m3u8 M3U, pls PLS. Missing files and URLs are kept. An existing file gives way as
/// a whole.
void addConvertListCommand(CLI::App& app, Invocation& invocation);

}  // namespace cli
