// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/DiskQueue.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include <QScopeGuard>

#include "audio/parallel/Launch.h"
#include "platform/ThreadName.h"
#include "widgets/Dispatch.h"

namespace playlist {
namespace {

constexpr std::chrono::milliseconds unnoticed{100};
constexpr std::chrono::seconds farewell{1};

DiskQueue::Answer fetch(const DiskQueue::Job& job, const std::stop_token& stop) {
    try {
        return job(stop);
    } catch (...) {
        return [error = audio::parallel::currentError()] { std::rethrow_exception(error); };
    }
}

}  // namespace

/// What the two threads share; the worker may outlive the queue.
struct DiskQueue::Shared {
    std::mutex mutex;  // guards everything below
    std::condition_variable changed;
    std::deque<Job> jobs;
    std::deque<Answer> answers;
    DiskQueue* queue = nullptr;  // none once it is gone
    bool atWork = false;         // a job is in hand
    bool started = false;

    /// The worker's life.
    void work(const std::stop_token& stop) {
        platform::nameThisThread("disk");
        std::unique_lock lock(mutex);
        while (true) {
            changed.wait(lock, [this] { return !queue || !jobs.empty(); });
            if (!queue) return;
            const Job job = std::move(jobs.front());
            jobs.pop_front();
            atWork = true;
            lock.unlock();
            Answer answer = fetch(job, stop);
            lock.lock();
            atWork = false;
            answers.push_back(std::move(answer));
            if (queue) tell();
            changed.notify_all();
        }
    }
    /// Has the next answer taken by an event. Called under the lock.
    void tell() {
        QMetaObject::invokeMethod(queue, widgets::guarded([queue = queue] { queue->takeNext(); }),
                                  Qt::QueuedConnection);
    }
};

DiskQueue::DiskQueue(QObject* parent) : QObject(parent), shared_(std::make_shared<Shared>()) {
    shared_->queue = this;
}

DiskQueue::~DiskQueue() {
    stop_.request_stop();
    std::unique_lock lock(shared_->mutex);
    shared_->queue = nullptr;
    shared_->jobs.clear();
    shared_->changed.notify_all();
    shared_->changed.wait_for(lock, farewell, [this] { return !shared_->atWork; });
}

void DiskQueue::add(Job job) {
    {
        std::unique_lock lock(shared_->mutex);
        shared_->jobs.push_back(std::move(job));
        // Left behind where its last job never ends.
        if (!std::exchange(shared_->started, true))
            std::thread([shared = shared_, stop = stop_.get_token()] {
                shared->work(stop);
            }).detach();
        shared_->changed.notify_all();
        shared_->changed.wait_for(lock, unnoticed,
                                  [this] { return shared_->jobs.empty() && !shared_->atWork; });
    }
    while (takeNext()) {
    }
}

void DiskQueue::setHeld(bool held) {
    held_ = held;
    const std::lock_guard lock(shared_->mutex);
    if (!held && !shared_->answers.empty()) shared_->tell();
}

bool DiskQueue::busy() const {
    const std::lock_guard lock(shared_->mutex);
    return answering_ || shared_->atWork || !shared_->jobs.empty() || !shared_->answers.empty();
}

// An answer may show a box, and the box lets events through.
bool DiskQueue::takeNext() {
    if (held_ || answering_) return false;
    Answer answer;
    {
        const std::lock_guard lock(shared_->mutex);
        if (shared_->answers.empty()) return false;
        answer = std::move(shared_->answers.front());
        shared_->answers.pop_front();
    }
    answering_ = true;
    const auto next = qScopeGuard([this] {
        answering_ = false;
        const std::lock_guard lock(shared_->mutex);
        if (!shared_->answers.empty()) shared_->tell();
    });
    if (answer) answer();
    return true;
}

}  // namespace playlist
