// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <future>
#include <memory>
#include <semaphore>
#include <utility>

#include "audio/parallel/Budget.h"
#include "audio/parallel/Launch.h"

namespace audio::parallel {

/// Tasks of which some run side by side, and whose results are taken in the order in which they
/// were begun. One thread begins and takes; each task has a thread of its own. All rows of tasks
/// share the program's budget, so that many files in work take no more cores and hardly more memory
/// than one. Tasks must not wait for one another. Destruction waits for all that were begun, so
/// what the tasks use has to outlive this object.
template <typename Result>
class OrderedTasks {
  public:
    /// `threads` tasks run at a time; `waiting` more may be begun, so that none of the threads
    /// ever lacks work.
    OrderedTasks(int threads, int waiting)
        : most_(static_cast<std::size_t>(threads + waiting)), turns_(threads) {}

    bool empty() const { return tasks_.empty(); }
    /// Whether a result has to be taken before the next task may begin. Never without a task.
    bool full() const {
        if (tasks_.empty()) return false;
        return tasks_.size() >= most_ || !Budget::ofProgram().allowsMore();
    }

    /// `task` is called without arguments, once.
    template <typename Task>
    void begin(Task task) {
        auto place = std::make_unique<Budget::Place>();
        auto result = launch("encode", [this, task = std::move(task)]() mutable {
            turns_.acquire();
            const Turn turn{turns_};
            const Budget::Turn core;
            return task();
        });
        tasks_.push_back({std::move(place), std::move(result)});
    }

    /// Waits so long for the first result; whether it is there.
    bool ready(std::chrono::milliseconds patience) const {
        return tasks_.front().result.wait_for(patience) == std::future_status::ready;
    }
    /// The first result; throws what its task threw, as a platform::Error. Waits for it.
    Result take() {
        Begun first = std::move(tasks_.front());
        tasks_.pop_front();
        return first.result.get();
    }
    /// Waits for all tasks and forgets them.
    void clear() { tasks_.clear(); }

  private:
    struct Turn {
        std::counting_semaphore<>& turns;
        ~Turn() { turns.release(); }
    };

    struct Begun {
        std::unique_ptr<Budget::Place> place;
        std::future<Result> result;
    };

    std::size_t most_;
    std::counting_semaphore<> turns_;
    std::deque<Begun> tasks_;  // uses the one above
};

}  // namespace audio::parallel
