// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace platform {

/// Gives the calling thread a name that debuggers and system monitors show; at most 15 letters.
void nameThisThread(const char* name);

}  // namespace platform
