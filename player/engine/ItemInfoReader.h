// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <vector>

#include <QString>

#include "audio/tags/TrackInfo.h"
#include "player/engine/Playlist.h"

namespace player {

/// Reads titles and durations of playlist entries on worker threads. All calls come from one
/// thread; the results wait here until that thread takes them.
class ItemInfoReader {
  public:
    struct Item {
        int player = 0;
        EntryId id = 0;
        QString path;
    };
    struct Result {
        int player = 0;
        EntryId id = 0;
        audio::tags::TrackInfo info;
    };
    /// Counts the items of one request that are still to be read.
    using Ticket = std::shared_ptr<int>;

    /// `ready` is called on a worker whenever results wait where none did before.
    explicit ItemInfoReader(std::function<void()> ready);
    /// Waits for the files in hand; drops the rest.
    ~ItemInfoReader();
    ItemInfoReader(const ItemInfoReader&) = delete;
    ItemInfoReader& operator=(const ItemInfoReader&) = delete;

    /// Queues items, in front of all others or behind them.
    Ticket request(const std::vector<Item>& items, bool first);
    /// Waits until all of a request is read, at most this long.
    void wait(const Ticket& ticket, std::chrono::milliseconds most);
    /// Reads these before the others.
    void prefer(const std::unordered_set<EntryId>& ids);
    /// Forgets what is queued for a player.
    void drop(int player);
    /// Takes up to `most` results, the oldest first.
    std::vector<Result> take(std::size_t most);

  private:
    struct Job {
        Item item;
        Ticket ticket;
    };

    void startWorkers();
    void work();
    void finish(const Job& job, audio::tags::TrackInfo info);

    const std::function<void()> ready_;
    std::mutex mutex_;  // guards all below and every ticket's count
    std::condition_variable wake_;
    std::condition_variable read_;
    std::deque<Job> jobs_;
    std::deque<Result> results_;
    bool quit_ = false;
    std::vector<std::future<void>> workers_;  // started with the first request
};

}  // namespace player
