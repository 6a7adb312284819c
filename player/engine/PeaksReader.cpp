// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/PeaksReader.h"

#include <chrono>
#include <exception>
#include <utility>
#include <vector>

#include "audio/parallel/Launch.h"

namespace player {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::size_t kColumns = 2048;
constexpr std::size_t kChunk = 8192;
constexpr auto kPublishEvery = 250ms;

}  // namespace

PeaksReader::PeaksReader(OpenSound openSound, std::function<void()> changed)
    : openSound_(std::move(openSound)), changed_(std::move(changed)) {}

PeaksReader::~PeaksReader() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
        want({});
    }
    wake_.notify_all();
    if (thread_.valid()) thread_.wait();
}

std::shared_ptr<const audio::dsp::Peaks> PeaksReader::peaks(const QString& path) {
    const std::lock_guard lock(mutex_);
    if (path != path_) {
        want(path);
        if (!thread_.valid()) thread_ = audio::parallel::launch("peaks", [this] { run(); });
        wake_.notify_all();
    }
    return peaks_;
}

void PeaksReader::release(const QString& path) {
    const std::lock_guard lock(mutex_);
    if (path != path_) return;
    want({});
}

/// Ends the work on the file before. Under the lock.
void PeaksReader::want(const QString& path) {
    path_ = path;
    peaks_.reset();
    ++request_;
    stop_.request_stop();
    stop_ = std::stop_source();
}

void PeaksReader::awaitRest(Clock::time_point until) {
    std::unique_lock lock(mutex_);
    rested_.wait_until(lock, until, [this] { return !busy_ || done_ == request_; });
}

void PeaksReader::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return quit_ || done_ != request_; });
        if (quit_) return;
        done_ = request_;
        const QString path = path_;
        const std::stop_token stop = stop_.get_token();
        if (path.isEmpty()) continue;
        busy_ = true;
        lock.unlock();
        measure(path, stop);
        lock.lock();
        busy_ = false;
        rested_.notify_all();
    }
}

void PeaksReader::measure(const QString& path, const std::stop_token& stop) {
    const audio::parallel::StopScope scope(stop);
    try {
        const auto source = openSound_(path);
        audio::dsp::PeakMeter meter(source->frames(), source->channels(), kColumns);
        std::vector<float> chunk(kChunk * std::size_t(source->channels()));
        auto published = Clock::now();
        while (const std::size_t frames = source->read(chunk.data(), kChunk)) {
            if (stop.stop_requested()) return;
            meter.add(chunk.data(), frames);
            if (Clock::now() - published < kPublishEvery) continue;
            published = Clock::now();
            publish(meter.peaks(), stop);
        }
        publish(meter.peaks(), stop);
    } catch (const std::exception&) {
        // A file that cannot be read to its end has the peaks found until then.
    }
}

void PeaksReader::publish(const audio::dsp::Peaks& peaks, const std::stop_token& stop) {
    auto copy = std::make_shared<const audio::dsp::Peaks>(peaks);
    {
        const std::lock_guard lock(mutex_);
        if (stop.stop_requested()) return;
        peaks_ = std::move(copy);
    }
    changed_();
}

}  // namespace player
