// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace platform {

/// Makes a window (its native handle) the topmost of all, unless it is the foreground window
/// already; the window that is in the foreground loses that rank. Nothing is moved, resized or
/// given the focus. Elsewhere than on Windows the window manager decides, and this does nothing:
/// ask it with Qt::WindowStaysOnTopHint.
void keepOnTop(std::uintptr_t window);

}  // namespace platform
