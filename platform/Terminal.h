// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace platform {

/// Whether a person reads both the standard output and the standard error on a terminal that
/// understands control sequences.
bool onTerminal();

/// The terminal's width in characters; 80 where it cannot be told.
int terminalWidth();

}  // namespace platform
