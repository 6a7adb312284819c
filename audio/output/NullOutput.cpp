// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/output/NullOutput.h"

#include <chrono>

#include "audio/parallel/Launch.h"

namespace audio::output {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBlockFrames = 2048;
constexpr auto kLate = std::chrono::seconds(1);  // after a suspend: no catching up

}  // namespace

NullOutput::NullOutput(int rate, FrameSource& source)
    : rate_(rate), source_(source), block_(2 * kBlockFrames) {}

NullOutput::~NullOutput() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_all();
    if (thread_.valid()) thread_.wait();
}

void NullOutput::start() {
    thread_ = parallel::launch("null output", [this] { run(); });
}

void NullOutput::run() {
    // From one start the frames taken are counted, so that the pace does not drift.
    auto start = Clock::now();
    std::int64_t taken = 0;
    std::unique_lock lock(mutex_);
    while (!quit_) {
        lock.unlock();
        source_.render(block_.data(), kBlockFrames, {rate_, Clock::now()});
        taken += kBlockFrames;
        lock.lock();
        const auto due = start + durationOf(taken, rate_);
        if (Clock::now() - due > kLate) {
            start = Clock::now();
            taken = 0;
        }
        wake_.wait_until(lock, due, [this] { return quit_; });
    }
}

}  // namespace audio::output
