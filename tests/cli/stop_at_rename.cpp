// SPDX-License-Identifier: GPL-3.0-or-later
// Loaded ahead of the system's library: asks the process to end right after, or with
// STOP_BEFORE_RENAME set right before, a file is put in the place of another.
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

extern "C" int rename(const char* from, const char* to) noexcept {
    const bool before = std::getenv("STOP_BEFORE_RENAME") != nullptr;
    if (before) ::kill(::getpid(), SIGINT);
    const auto next =
        reinterpret_cast<int (*)(const char*, const char*)>(::dlsym(RTLD_NEXT, "rename"));
    const int result = next(from, to);
    if (!before) ::kill(::getpid(), SIGINT);
    return result;
}
