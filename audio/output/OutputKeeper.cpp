// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/output/OutputKeeper.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "audio/parallel/Launch.h"

namespace audio::output {
namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 200ms;         // between two looks at a device in use
constexpr auto kOpening = 1500ms;     // of silence, until the null output takes over
constexpr auto kReopening = 300ms;    // the same after a device was lost
constexpr auto kClosing = 1000ms;     // at the end; a device that needs longer is left behind
constexpr auto kCloseAfter = 60s;     // without anything playing
constexpr auto kFirstRetry = 1000ms;  // for a real device while the null output runs; doubles
constexpr auto kLastRetry = 16000ms;
constexpr int kDropOuts = 3;  // of one device, before it gets a longer buffer
constexpr auto kBuffer = 90ms;
constexpr auto kLongestBuffer = 360ms;

}  // namespace

OutputKeeper::OutputKeeper(OpenDevice open, FrameSource& source)
    : open_(std::move(open)),
      source_(source),
      buffer_(kBuffer),
      thread_(parallel::launch("output watch", [this] { run(); })) {}

OutputKeeper::~OutputKeeper() {
    shutDown();
}

void OutputKeeper::shutDown() {
    {
        const std::lock_guard lock(signal_->mutex);
        quit_ = true;
    }
    (*signal_)();
    if (thread_.valid()) thread_.wait();
}

void OutputKeeper::setRate(int rate) {
    rate_ = rate;
    (*signal_)();
}

void OutputKeeper::setPlaying(bool playing) {
    {
        const std::lock_guard lock(signal_->mutex);
        playing_ = playing;
    }
    (*signal_)();
}

std::string OutputKeeper::deviceName() const {
    const std::lock_guard lock(signal_->mutex);
    return name_;
}

void OutputKeeper::run() {
    std::unique_lock lock(signal_->mutex);
    while (!quit_) {
        const unsigned seen = signal_->given;
        if (playing_) lastPlaying_ = Clock::now();
        lock.unlock();
        attend();
        lock.lock();
        name_ = standIn_ ? standIn_->name() : adopted_ ? line_->device->name() : std::string();
        const auto given = [&] { return quit_ || signal_->given != seen; };
        if (isIdle())
            signal_->wake.wait(lock, [this] { return quit_ || (playing_ && rate_ != 0); });
        else
            signal_->wake.wait_for(lock, kLook, given);
    }
    lock.unlock();
    finish();
}

/// One look at how things stand, and the steps that are due.
void OutputKeeper::attend() {
    if (rate_ == 0) return;
    closeRetired();
    const auto now = Clock::now();
    if (now - lastPlaying_ > kCloseAfter) {
        standIn_.reset();
        if (line_) retire(kOpening);
        return closeRetired();
    }
    followLine();
    if (standIn_ && standIn_->rate() != rate_) startStandIn();
    closeRetired();
    const bool due = !standIn_ || now >= nextTry_;
    if (!line_ && !retired_ && !hand_.busy() && due) beginOpening();
    if (!adopted_ && !standIn_ && now >= standInFrom_) startStandIn();
}

/// What has become of the device that is in use, or on the way.
void OutputKeeper::followLine() {
    if (!line_ || line_->state == DeviceLine::Opening) return;
    if (line_->state == DeviceLine::Failed) {
        line_.reset();
        if (!standIn_) startStandIn();
        return;
    }
    if (!adopted_) adopt();
    const OutputDevice& device = *line_->device;
    if (!device.alive()) return retire(kReopening);
    if (device.rate() != rate_) return retire(kOpening);
    if (device.dropOuts() < kDropOuts || buffer_ >= kLongestBuffer) return;
    buffer_ *= 2;
    retire(kOpening);
}

/// The null output, if it runs, ends before the device begins.
void OutputKeeper::adopt() {
    standIn_.reset();
    adopted_ = true;
    line_->gate.open();
}

/// Nothing goes to the device any more; it is closed when the hand is free.
void OutputKeeper::retire(std::chrono::milliseconds silence) {
    line_->gate.shut();
    adopted_ = false;
    standInFrom_ = Clock::now() + silence;
    retired_ = std::move(line_);
}

void OutputKeeper::closeRetired() {
    if (retired_ && !hand_.busy())
        hand_.start([line = std::exchange(retired_, nullptr)] { line->device.reset(); });
}

void OutputKeeper::beginOpening() {
    if (standIn_) {
        retry_ = std::min<std::chrono::milliseconds>(retry_ * 2, kLastRetry);
        nextTry_ = Clock::now() + retry_;
    } else {
        standInFrom_ = Clock::now() + kOpening;
    }
    line_ = std::make_shared<DeviceLine>(source_);
    hand_.start([line = line_, open = open_, wish = DeviceWish{rate_, buffer_}] {
        try {
            line->device = open(wish, line->gate);
            line->device->start();
            line->state = DeviceLine::Running;
        } catch (const std::exception&) {
            line->state = DeviceLine::Failed;  // the null output takes the sound
        }
    });
}

void OutputKeeper::startStandIn() {
    standIn_.reset();
    standIn_ = std::make_unique<NullOutput>(rate_, source_);
    retry_ = kFirstRetry;
    nextTry_ = Clock::now() + retry_;
    standIn_->start();
}

/// A device that hangs already is not waited for at all.
void OutputKeeper::finish() {
    standIn_.reset();
    if (line_) retire({});
    const auto until = (hand_.busy() ? hand_.since() : Clock::now()) + kClosing;
    std::unique_lock lock(signal_->mutex);
    while ((retired_ || hand_.busy()) && Clock::now() < until) {
        const unsigned seen = signal_->given;
        lock.unlock();
        closeRetired();
        lock.lock();
        signal_->wake.wait_until(lock, until, [&] { return signal_->given != seen; });
    }
}

}  // namespace audio::output
