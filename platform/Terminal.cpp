// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Terminal.h"

#include <QByteArray>
#include <QtGlobal>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace platform {

constexpr int usualWidth = 80;

#ifdef Q_OS_WIN

bool onTerminal() {
    // Old consoles understand control sequences only when asked to.
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        const HANDLE handle = GetStdHandle(stream);
        DWORD mode = 0;
        if (!GetConsoleMode(handle, &mode)) return false;
        if (!SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING)) return false;
    }
    return true;
}

int terminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) return usualWidth;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

#else

bool onTerminal() {
    if (!isatty(STDOUT_FILENO) || !isatty(STDERR_FILENO)) return false;
    return qgetenv("TERM") != "dumb";
}

int terminalWidth() {
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return usualWidth;
    return size.ws_col;
}

#endif

}  // namespace platform
