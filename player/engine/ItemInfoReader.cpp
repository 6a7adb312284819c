// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/ItemInfoReader.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "audio/parallel/Launch.h"
#include "platform/Paths.h"

namespace player {

ItemInfoReader::ItemInfoReader(std::function<void()> ready) : ready_(std::move(ready)) {}

ItemInfoReader::~ItemInfoReader() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    for (const auto& worker : workers_) worker.wait();
}

ItemInfoReader::Ticket ItemInfoReader::request(const std::vector<Item>& items, bool first) {
    const auto ticket = std::make_shared<int>(int(items.size()));
    std::vector<Job> jobs;
    jobs.reserve(items.size());
    for (const Item& item : items) jobs.push_back({item, ticket});
    {
        const std::lock_guard lock(mutex_);
        jobs_.insert(first ? jobs_.begin() : jobs_.end(), jobs.begin(), jobs.end());
    }
    startWorkers();
    wake_.notify_all();
    return ticket;
}

void ItemInfoReader::wait(const Ticket& ticket, std::chrono::milliseconds most) {
    std::unique_lock lock(mutex_);
    read_.wait_for(lock, most, [&ticket] { return *ticket <= 0; });
}

void ItemInfoReader::prefer(const std::unordered_set<EntryId>& ids) {
    const std::lock_guard lock(mutex_);
    std::stable_partition(jobs_.begin(), jobs_.end(),
                          [&ids](const Job& job) { return ids.contains(job.item.id); });
}

void ItemInfoReader::drop(int player) {
    const std::lock_guard lock(mutex_);
    std::erase_if(jobs_, [player](const Job& job) { return job.item.player == player; });
}

std::vector<ItemInfoReader::Result> ItemInfoReader::take(std::size_t most) {
    const std::lock_guard lock(mutex_);
    const auto end = results_.begin() + std::ptrdiff_t(std::min(most, results_.size()));
    std::vector<Result> taken(std::make_move_iterator(results_.begin()),
                              std::make_move_iterator(end));
    results_.erase(results_.begin(), end);
    return taken;
}

void ItemInfoReader::startWorkers() {
    if (!workers_.empty()) return;
    const unsigned count = std::clamp(std::thread::hardware_concurrency(), 2U, 4U);
    for (unsigned i = 0; i < count; ++i)
        workers_.push_back(audio::parallel::launch("track info", [this] { work(); }));
}

void ItemInfoReader::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return quit_ || !jobs_.empty(); });
        if (quit_) return;
        const Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        finish(job, audio::tags::readTrackInfo(platform::toPath(job.item.path)));
        lock.lock();
    }
}

void ItemInfoReader::finish(const Job& job, audio::tags::TrackInfo info) {
    bool first = false;
    {
        const std::lock_guard lock(mutex_);
        first = results_.empty();
        results_.push_back({job.item.player, job.item.id, std::move(info)});
        --*job.ticket;
    }
    read_.notify_all();
    if (first) ready_();
}

}  // namespace player
