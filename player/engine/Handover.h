// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>

namespace player {

/// The latest of a row of values, on its way from one writing to one reading thread, without locks
/// and without memory beyond its three places: one is the writer's, one the reader's, and the third
/// changes hands. A value that is put before the last one was taken replaces it.
template <typename Value>
class Handover {
  public:
    /// The writing thread.
    void put(const Value& value) {
        places_[writers_] = value;
        writers_ = between_.exchange(writers_ | kNew, std::memory_order_acq_rel) & ~kNew;
    }

    // The reading thread.

    /// Whether a value came since the last call; value() is that one then.
    bool take() {
        if (!(between_.load(std::memory_order_relaxed) & kNew)) return false;
        readers_ = between_.exchange(readers_, std::memory_order_acq_rel) & ~kNew;
        return true;
    }
    const Value& value() const { return places_[readers_]; }

  private:
    static constexpr unsigned kNew = 4;  // beside the number of a place

    std::array<Value, 3> places_{};
    std::atomic<unsigned> between_ = 0;
    unsigned writers_ = 1;
    unsigned readers_ = 2;
};

}  // namespace player
