// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <variant>
#include <vector>

#include <QString>

#include "player/engine/RateShare.h"
#include "player/engine/SoundFeed.h"

namespace player {

/// One player's sound: its decoder thread, and the orders that the engine's thread gives to it.
/// Calls come from the engine's thread and return at once, but where they say otherwise.
class Voice final : private SoundFeed::Host {
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
    unsigned seek(const Mark& heard, const SeekTarget& target);
    void fade(double from, double to, std::int64_t milliseconds);
    void close();
    /// Waits until the file is closed, at most two seconds.
    void release(const QString& path);
    void acquire(const QString& path);
    /// Frames will be taken from the ring.
    void wake();

    std::optional<Mark> markAt(std::int64_t ringFrame) const { return feed_.markAt(ringFrame); }
    std::vector<News> takeNews();

    /// Waits until the ring holds this many frames or no more can come. For a device without a
    /// clock, on its thread.
    /// False where they wait for room that the reader is to make.
    bool awaitFrames(std::size_t frames);

  private:
    struct SeekOrder {
        Mark heard;
        SoundFeed::Seek seek;
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
    std::optional<SoundFeed::Seek> takeSeek() override;
    int joinRate(int sourceRate) override;
    void leaveRate() override;

    void give(Order order);
    void giveAnew(Order order);
    void run();
    void step();
    std::optional<Order> nextOrder();
    void obey(const Order& order);
    void obey(const Opening& opening);
    void feedOn();
    void report(News::Kind kind, unsigned opening);

    const int player_;
    RateShare& rates_;
    const std::function<void()> newsCame_;
    VoiceChannel channel_;
    SoundFeed feed_;               // the decoder thread's
    unsigned reportedLength_ = 0;  // the decoder thread's: a mark's start
    unsigned lastOpening_ = 0;     // the engine's thread's
    unsigned lastSeek_ = 0;        // the engine's thread's

    std::mutex mutex_;  // guards all below
    std::condition_variable wake_;
    std::condition_variable rested_;  // an order was obeyed, or frames were fed
    std::deque<Order> orders_;
    std::vector<News> news_;
    bool busy_ = false;     // an order is being obeyed
    bool canFeed_ = false;  // the feed has something open that is not at its end
    bool quit_ = false;
    std::thread thread_;
};

}  // namespace player
