// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <functional>
#include <future>
#include <type_traits>
#include <utility>

#include "audio/parallel/Stop.h"
#include "platform/ThreadName.h"

namespace audio::parallel {

/// Throws what is being handled: a platform::Error as it is, everything else (no memory, a file
/// system's or a library's own exception) as a platform::Error with a sentence. Call it in a catch
/// clause.
[[noreturn]] void rethrowAsError();

/// What rethrowAsError() would throw.
std::exception_ptr currentError();

/// Runs `task` on a thread of its own, which bears `name` (at most 15 letters) and stops when the
/// calling one is told to (Stop.h). The future's get()
/// waits for its result, or throws a platform::Error; its destructor waits too. Throws
/// platform::Error where the system has no thread left.
template <typename Task>
auto launch(const char* name, Task task) -> std::future<std::invoke_result_t<Task&>> {
    try {
        return std::async(std::launch::async,
                          [name, stop = currentStop(), task = std::move(task)]() mutable {
                              platform::nameThisThread(name);
                              const StopScope scope(std::move(stop));
                              try {
                                  return task();
                              } catch (...) {
                                  rethrowAsError();
                              }
                          });
    } catch (...) {
        rethrowAsError();
    }
}

}  // namespace audio::parallel
