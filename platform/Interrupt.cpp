// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Interrupt.h"

#include <array>
#include <atomic>
#include <csignal>

#include <QtGlobal>

namespace platform {
namespace {

// A signal handler can reach nothing but what is static.
std::atomic<bool> requested = false;
static_assert(std::atomic<bool>::is_always_lock_free);

#ifdef Q_OS_WIN
constexpr std::array signals = {SIGINT, SIGTERM, SIGBREAK};
#else
constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP};
#endif

void note(int) {
    requested = true;
    for (const int signal : signals) std::signal(signal, SIG_DFL);
}

}  // namespace

void watchForInterrupt() {
    for (const int signal : signals) std::signal(signal, note);
}

bool interrupted() {
    return requested;
}

}  // namespace platform
