// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace platform {

/// From now on the first request to end (Ctrl+C, a termination signal, a closed terminal) only
/// makes interrupted() true, so that the work in hand can be ended in order; the second one ends
/// the process at once. A window asks interrupted() from a timer.
void watchForInterrupt();

/// Whether the program has been asked to end since. Any thread.
bool interrupted();

}  // namespace platform
