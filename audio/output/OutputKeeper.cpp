// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/output/OutputKeeper.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "audio/output/NullOutput.h"

namespace audio::output {
namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 200ms;         // between two looks at a device in use
constexpr auto kCloseAfter = 60s;     // without anything playing
constexpr auto kFirstRetry = 1000ms;  // for a real device while the null output runs; doubles
constexpr auto kLastRetry = 16000ms;

}  // namespace

OutputKeeper::OutputKeeper(OpenDevice open, FrameSource& source)
    : open_(std::move(open)), source_(source), thread_([this] { run(); }) {}

OutputKeeper::~OutputKeeper() {
    shutDown();
}

void OutputKeeper::shutDown() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void OutputKeeper::setRate(int rate) {
    const std::lock_guard lock(mutex_);
    rate_ = rate;
    wake_.notify_all();
}

void OutputKeeper::setPlaying(bool playing) {
    const std::lock_guard lock(mutex_);
    playing_ = playing;
    wake_.notify_all();
}

std::string OutputKeeper::deviceName() const {
    const std::lock_guard lock(mutex_);
    return name_;
}

void OutputKeeper::run() {
    std::unique_lock lock(mutex_);
    while (!quit_) {
        if (playing_) lastPlaying_ = Clock::now();
        lock.unlock();
        attend();
        lock.lock();
        name_ = device_ ? device_->name() : std::string();
        const int current = device_ ? device_->rate() : 0;  // which is the rate of no device
        const auto changed = [this, current] {
            return quit_ || (playing_ && rate_.load() != current);
        };
        if (device_)
            wake_.wait_for(lock, kLook, changed);
        else
            wake_.wait(lock, changed);
    }
    lock.unlock();
    device_.reset();
}

void OutputKeeper::attend() {
    const int rate = rate_;
    if (rate == 0) return;
    const auto now = Clock::now();
    if (now - lastPlaying_ > kCloseAfter) {
        device_.reset();
        return;
    }
    if (!device_ || device_->rate() != rate || !device_->alive()) {
        replace(rate);
    } else if (standIn_ && now >= nextTry_) {
        retry_ = std::min<std::chrono::milliseconds>(retry_ * 2, kLastRetry);
        nextTry_ = now + retry_;
        tryOpen(rate);
    }
}

void OutputKeeper::replace(int rate) {
    device_.reset();  // before the next one: many devices serve one at a time
    if (tryOpen(rate)) return;
    device_ = std::make_unique<NullOutput>(rate, source_);
    standIn_ = true;
    retry_ = kFirstRetry;
    nextTry_ = Clock::now() + retry_;
    device_->start();
}

bool OutputKeeper::tryOpen(int rate) {
    try {
        auto device = open_(rate, source_);
        device_ = std::move(device);  // the null output, if it runs, ends before this one starts
        standIn_ = false;
        device_->start();
        return true;
    } catch (const std::exception&) {
        return false;  // the null output takes the sound
    }
}

}  // namespace audio::output
