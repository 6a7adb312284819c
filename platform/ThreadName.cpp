// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ThreadName.h"

#include <QString>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace platform {

void nameThisThread(const char* name) {
#if defined(Q_OS_WIN)
    SetThreadDescription(GetCurrentThread(),
                         reinterpret_cast<const wchar_t*>(QString::fromLatin1(name).utf16()));
#elif defined(Q_OS_LINUX)
    pthread_setname_np(pthread_self(), name);
#else
    static_cast<void>(name);
#endif
}

}  // namespace platform
