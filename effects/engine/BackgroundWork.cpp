// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/engine/BackgroundWork.h"

#include <chrono>
#include <future>

#include "audio/parallel/Launch.h"

namespace effects {
namespace {

// Less than the promised 50 ms, for what the system adds to a wait.
constexpr std::chrono::milliseconds betweenReports{30};

}  // namespace

void runInBackground(audio::edit::Work& work, const std::function<void(int)>& raise,
                     const std::function<void()>& task) {
    std::future<void> result = audio::parallel::launch("effect", [&] {
        const audio::parallel::StopScope scope(work.stop());
        task();
    });
    try {
        while (result.wait_for(betweenReports) != std::future_status::ready) raise(work.percent());
    } catch (...) {
        // A listener that throws ends the work; the task must not outlive what it refers to.
        work.cancel();
        result.wait();
        throw;
    }
    result.get();
    raise(100);
}

}  // namespace effects
