// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <future>
#include <semaphore>
#include <utility>

namespace audio::parallel {

/// Tasks of which some run side by side, and whose results are taken in the order in which they
/// were begun. One thread begins and takes; each task has a thread of its own. Destruction waits
/// for all that were begun, so what the tasks use has to outlive this object.
template <typename Result>
class OrderedTasks {
  public:
    /// `threads` tasks run at a time; `waiting` more may be begun, so that none of the threads
    /// ever lacks work.
    OrderedTasks(int threads, int waiting)
        : most_(static_cast<std::size_t>(threads + waiting)), turns_(threads) {}

    bool empty() const { return tasks_.empty(); }
    /// Whether a result has to be taken before the next task may begin.
    bool full() const { return tasks_.size() >= most_; }

    /// `task` is called without arguments, once.
    template <typename Task>
    void begin(Task task) {
        tasks_.push_back(std::async(std::launch::async, [this, task = std::move(task)]() mutable {
            turns_.acquire();
            const Turn turn{turns_};
            return task();
        }));
    }

    /// Waits so long for the first result; whether it is there.
    bool ready(std::chrono::milliseconds patience) const {
        return tasks_.front().wait_for(patience) == std::future_status::ready;
    }
    /// The first result; throws what its task threw. Waits for it.
    Result take() {
        std::future<Result> first = std::move(tasks_.front());
        tasks_.pop_front();
        return first.get();
    }
    /// Waits for all tasks and forgets them.
    void clear() { tasks_.clear(); }

  private:
    struct Turn {
        std::counting_semaphore<>& turns;
        ~Turn() { turns.release(); }
    };

    std::size_t most_;
    std::counting_semaphore<> turns_;
    std::deque<std::future<Result>> tasks_;  // uses the one above
};

}  // namespace audio::parallel
