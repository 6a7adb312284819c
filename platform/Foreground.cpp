// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Foreground.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace platform {

#ifdef Q_OS_WIN

void keepOnTop(std::uintptr_t window) {
    const HWND own = reinterpret_cast<HWND>(window);
    const HWND foreground = GetForegroundWindow();
    if (foreground == own) return;
    constexpr UINT inPlace = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE;
    SetWindowPos(foreground, HWND_NOTOPMOST, 0, 0, 0, 0, inPlace);
    SetWindowPos(own, HWND_TOPMOST, 0, 0, 0, 0, inPlace);
}

#else

void keepOnTop(std::uintptr_t) {}

#endif

}  // namespace platform
