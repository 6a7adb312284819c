// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <variant>
#include <vector>

#include <QString>

#include "player/engine/RateShare.h"
#include "player/engine/TrackFeed.h"

namespace player {

/// One player's sound: its decoder thread, and the orders that the engine's thread gives to it.
/// Calls come from the engine's thread and return at once, but where they say otherwise.
class Voice final : private TrackFeed::Host {
  public:
    /// What the decoder thread has to tell.
    struct News {
        enum Kind { Opened, Failed, Length };
        Kind kind = Opened;
        unsigned opening = 0;  ///< the order's number
        Mark mark;             ///< of Opened and Length: what is open
    };

    /// `newsCame` is called on the decoder thread.
    Voice(int player, const Playlist& playlist, OpenSound openSound, RateShare& rates,
          std::function<void()> newsCame);
    ~Voice() override;

    VoiceChannel& channel() { return channel_; }
    const VoiceChannel& channel() const { return channel_; }

    /// Orders; each gives way to a later one of its kind, and all but release to a later opening.
    /// Answers the order's number.
    unsigned open(EntryId id, const QString& path, int direction);
    /// The same, but what is on goes on until the new sound is found, and where none is.
    unsigned step(EntryId id, const QString& path, int direction);
    unsigned seek(const Mark& heard, const SeekTarget& target);
    void fade(double from, double to, std::int64_t milliseconds);
    void close();
    void release(const QString& path);
    /// Waits until what was ordered is done, up to this moment.
    void awaitOrders(std::chrono::steady_clock::time_point until);
    void acquire(const QString& path);
    /// Frames will be taken from the ring.
    void wake();

    std::optional<Mark> markAt(std::int64_t ringFrame) const { return feed_.markAt(ringFrame); }
    std::vector<News> takeNews();

    /// Whether the ring holds this many frames, or no more can come before it is read on.
    bool isReady(std::size_t frames);

  private:
    struct SeekOrder {
        Mark heard;
        TrackFeed::Seek seek;
    };
    struct FadeOrder {
        double from;
        double to;
        std::int64_t milliseconds;
    };
    struct CloseOrder {};
    struct ReleaseOrder {
        QString path;
    };
    struct AcquireOrder {
        QString path;
    };
    using Order =
        std::variant<Opening, SeekOrder, FadeOrder, CloseOrder, ReleaseOrder, AcquireOrder>;

    bool isSuperseded() override;
    std::optional<TrackFeed::Seek> takeSeek() override;
    int joinRate(int sourceRate) override;
    void leaveRate() override;
    bool raisesRate(int sourceRate) override;

    void give(Order order);
    void giveAnew(Order order);
    void run();
    void doNext();
    std::optional<Order> nextOrder();
    void obey(const Order& order);
    void obey(const Opening& opening);
    void feedOn();
    void report(News::Kind kind, unsigned opening);

    const int player_;
    RateShare& rates_;
    const std::function<void()> newsCame_;
    VoiceChannel channel_;
    TrackFeed feed_;               // the decoder thread's
    unsigned reportedLength_ = 0;  // the decoder thread's: a mark's start
    unsigned lastOpening_ = 0;     // the engine's thread's
    unsigned lastSeek_ = 0;        // the engine's thread's

    std::mutex mutex_;  // guards all below
    std::condition_variable wake_;
    std::condition_variable rested_;  // an order was obeyed
    std::deque<Order> orders_;
    std::vector<News> news_;
    bool busy_ = false;     // an order is being obeyed, or the rate of the ring raised
    bool canFeed_ = false;  // the feed can bring more into the ring as it stands
    bool drains_ = false;   // a higher rate begins when the ring is empty
    bool quit_ = false;
    std::future<void> thread_;
};

}  // namespace player
