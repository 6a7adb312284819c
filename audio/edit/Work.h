// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <stop_token>

#include "audio/parallel/Stop.h"

namespace audio::edit {

/// Thrown out of work that was told to stop.
using Cancelled = parallel::Stopped;

/// How far a piece of work has come, and whether it shall stop. One thread works, another watches;
/// every function may be called by either.
class Work {
  public:
    /// The size of all that is to be done, in units of the worker's choice.
    void begin(std::int64_t total) {
        done_ = 0;
        total_ = total;
    }
    /// Some of it is done. Throws Cancelled after cancel(), also that of other work which this is
    /// but a part of.
    void advance(std::int64_t units) {
        done_ += units;
        if (cancelled()) throw Cancelled();
        parallel::throwIfStopped();
    }
    /// Nothing, once commit() was called.
    void cancel() {
        State expected = State::Running;
        if (state_.compare_exchange_strong(expected, State::Cancelled)) stop_.request_stop();
    }
    bool cancelled() const { return state_ == State::Cancelled; }
    /// Requested by cancel(): for the threads that do what this counts (parallel::StopScope).
    std::stop_token stop() const { return stop_.get_token(); }
    /// The one point from which on the work succeeds and cannot be stopped any more. Throws
    /// Cancelled after cancel().
    void commit() {
        State expected = State::Running;
        if (!state_.compare_exchange_strong(expected, State::Committed) &&
            expected == State::Cancelled)
            throw Cancelled();
    }

    /// 0 to 99: the end is the end of the work, not of the counting.
    int percent() const {
        const std::int64_t total = total_;
        const std::int64_t percent = total > 0 ? done_ * 100 / total : 0;
        return static_cast<int>(percent < 99 ? percent : 99);
    }

  private:
    enum class State { Running, Cancelled, Committed };

    std::atomic<std::int64_t> done_ = 0;
    std::atomic<std::int64_t> total_ = 0;
    std::atomic<State> state_ = State::Running;
    std::stop_source stop_;
};

}  // namespace audio::edit
