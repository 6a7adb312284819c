// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/Voice.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "audio/parallel/Launch.h"

namespace player {
namespace {

using namespace std::chrono_literals;

constexpr auto kRefill = 100ms;  // the ring holds two seconds
constexpr auto kDrained = 5ms;   // between two looks whether it has been played

}  // namespace

Voice::Voice(int player, const Playlist& playlist, OpenSound openSound, RateShare& rates,
             std::function<void()> newsCame)
    : player_(player),
      rates_(rates),
      newsCame_(std::move(newsCame)),
      feed_(channel_, playlist, std::move(openSound), *this),
      thread_(audio::parallel::launch("decoder", [this] { run(); })) {}

Voice::~Voice() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    thread_.wait();
}

unsigned Voice::open(EntryId id, const QString& path, int direction) {
    channel_.announceOpening(++lastOpening_);
    giveAnew(Opening{lastOpening_, id, path, direction});
    return lastOpening_;
}

unsigned Voice::step(EntryId id, const QString& path, int direction) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(orders_, [](const Order& o) { return std::holds_alternative<Opening>(o); });
    }
    give(Opening{++lastOpening_, id, path, direction, true});
    return lastOpening_;
}

unsigned Voice::seek(const Mark& heard, const SeekTarget& target) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(orders_, [](const Order& o) { return std::holds_alternative<SeekOrder>(o); });
    }
    give(SeekOrder{heard, {target, ++lastSeek_}});
    return lastSeek_;
}

void Voice::fade(double from, double to, std::int64_t milliseconds) {
    give(FadeOrder{from, to, milliseconds});
}

void Voice::close() {
    giveAnew(CloseOrder{});
}

void Voice::release(const QString& path) {
    give(ReleaseOrder{path});
}

void Voice::awaitOrders(std::chrono::steady_clock::time_point until) {
    std::unique_lock lock(mutex_);
    rested_.wait_until(lock, until, [this] { return orders_.empty() && !busy_; });
}

void Voice::acquire(const QString& path) {
    give(AcquireOrder{path});
}

void Voice::wake() {
    const std::lock_guard lock(mutex_);
    wake_.notify_all();
}

std::vector<Voice::News> Voice::takeNews() {
    const std::lock_guard lock(mutex_);
    return std::exchange(news_, {});
}

bool Voice::isReady(std::size_t frames) {
    const std::lock_guard lock(mutex_);
    if (quit_ || !channel_.running()) return true;
    const std::int64_t level = channel_.level();
    const bool fed = canFeed_ ? level >= std::int64_t(frames) ||
                                    channel_.ring().space() == 0  // of what is dropped later
                              : !drains_ || level > 0;
    if (fed && orders_.empty() && !busy_) return true;
    wake_.notify_all();
    return false;
}

bool Voice::isSuperseded() {
    const std::lock_guard lock(mutex_);
    return quit_ || std::any_of(orders_.begin(), orders_.end(), [](const Order& order) {
               return std::holds_alternative<Opening>(order) ||
                      std::holds_alternative<CloseOrder>(order);
           });
}

std::optional<TrackFeed::Seek> Voice::takeSeek() {
    const std::lock_guard lock(mutex_);
    for (auto order = orders_.begin(); order != orders_.end(); ++order) {
        const auto* seek = std::get_if<SeekOrder>(&*order);
        if (!seek) continue;
        const TrackFeed::Seek taken = seek->seek;
        orders_.erase(order);
        return taken;
    }
    return std::nullopt;
}

int Voice::joinRate(int sourceRate) {
    return rates_.join(player_, sourceRate);
}

void Voice::leaveRate() {
    rates_.leave(player_);
}

bool Voice::raisesRate(int sourceRate) {
    return rates_.raises(player_, sourceRate);
}

void Voice::give(Order order) {
    {
        const std::lock_guard lock(mutex_);
        orders_.push_back(std::move(order));
    }
    wake_.notify_all();
}

/// In place of all that was ordered before, but for files to be let go of.
void Voice::giveAnew(Order order) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(orders_,
                      [](const Order& o) { return !std::holds_alternative<ReleaseOrder>(o); });
    }
    give(std::move(order));
}

void Voice::run() {
    while (true) {
        doNext();
        const std::lock_guard lock(mutex_);
        if (quit_) return;
        canFeed_ = feed_.canFeed();
        drains_ = feed_.drains();
        busy_ = false;
        rested_.notify_all();
    }
}

void Voice::doNext() {
    const auto order = nextOrder();
    try {
        if (order)
            obey(*order);
        else
            feedOn();
    } catch (const std::exception&) {  // no memory, or a form of sound that cannot be converted
        const unsigned opening = feed_.latest().opening;
        feed_.close();
        channel_.openingDone(opening);
        report(News::Failed, opening);
    }
}

/// Waits for an order or for room in the ring.
std::optional<Voice::Order> Voice::nextOrder() {
    std::unique_lock lock(mutex_);
    if (orders_.empty() && !quit_ && !feed_.hungry()) {
        if (feed_.isOpen() && channel_.running())
            wake_.wait_for(lock, feed_.drains() ? kDrained : kRefill);
        else
            wake_.wait(lock);
    }
    busy_ = feed_.drains() && feed_.hungry();
    if (orders_.empty() || quit_) return std::nullopt;
    const Order order = std::move(orders_.front());
    orders_.pop_front();
    busy_ = true;
    return order;
}

void Voice::obey(const Order& order) {
    if (const auto* opening = std::get_if<Opening>(&order)) obey(*opening);
    if (const auto* seek = std::get_if<SeekOrder>(&order)) feed_.seek(seek->heard, seek->seek);
    if (const auto* fade = std::get_if<FadeOrder>(&order))
        feed_.fade(fade->from, fade->to, fade->milliseconds);
    if (std::holds_alternative<CloseOrder>(order)) feed_.close();
    if (const auto* release = std::get_if<ReleaseOrder>(&order)) feed_.release(release->path);
    if (const auto* acquire = std::get_if<AcquireOrder>(&order)) feed_.acquire(acquire->path);
}

void Voice::obey(const Opening& opening) {
    report(feed_.open(opening) ? News::Opened : News::Failed, opening.number);
}

void Voice::feedOn() {
    if (!feed_.isOpen()) return;
    if (feed_.hungry() || feed_.atEnd()) feed_.feed();
    if (!feed_.hungry()) feed_.learnLength();
    const Mark mark = feed_.latest();
    if (mark.length < 0 || mark.start == reportedLength_) return;
    reportedLength_ = mark.start;
    report(News::Length, mark.opening);
}

void Voice::report(News::Kind kind, unsigned opening) {
    {
        const std::lock_guard lock(mutex_);
        news_.push_back({kind, opening, feed_.latest()});
    }
    newsCame_();
}

}  // namespace player
