// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/ReadAhead.h"

#include <algorithm>

#include "audio/parallel/Launch.h"
#include "audio/pcm/Blocks.h"

namespace audio::edit {
namespace {

constexpr std::size_t mostBlockFrames = 16384;
constexpr std::size_t blocksAhead = 4;

}  // namespace

ReadAhead::ReadAhead(std::unique_ptr<FrameReader> inner, int channels)
    : inner_(std::move(inner)), channels_(static_cast<std::size_t>(channels)) {
    start();
}

ReadAhead::~ReadAhead() {
    stop();
}

std::size_t ReadAhead::read(float* interleaved, std::size_t frames) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !blocks_.empty() || ended_; });
    if (blocks_.empty()) {
        if (failure_) std::rethrow_exception(failure_);
        return 0;
    }
    // Only the consumer touches the front block, so it can be copied without the lock.
    Block& block = blocks_.front();
    lock.unlock();
    const std::size_t count = std::min(frames * channels_, block.samples.size() - block.used);
    std::copy_n(block.samples.data() + block.used, count, interleaved);
    block.used += count;
    position_ += static_cast<std::int64_t>(count / channels_);
    if (block.used == block.samples.size()) {
        lock.lock();
        spare_.push_back(std::move(block.samples));
        blocks_.pop_front();
        changed_.notify_all();
    }
    return count / channels_;
}

void ReadAhead::seek(std::int64_t frame) {
    if (frame == position_) return;
    stop();
    inner_->seek(frame);
    position_ = frame;
    start();
}

void ReadAhead::start() {
    blocks_.clear();
    failure_ = nullptr;
    ended_ = stopping_ = false;
    worker_ = parallel::launch("read ahead", [this] { run(); });
}

void ReadAhead::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    if (worker_.valid()) worker_.wait();
}

void ReadAhead::run() {
    const std::size_t blockFrames = pcm::blockFrames(mostBlockFrames, static_cast<int>(channels_));
    std::exception_ptr failure;
    try {
        while (waitForRoom()) {
            std::vector<float> samples;
            {
                const std::lock_guard lock(mutex_);
                if (!spare_.empty()) {
                    samples = std::move(spare_.back());
                    spare_.pop_back();
                }
            }
            samples.resize(blockFrames * channels_);
            const std::size_t got = inner_->read(samples.data(), blockFrames);
            if (got == 0) break;
            samples.resize(got * channels_);
            put(std::move(samples));
        }
    } catch (...) {
        failure = parallel::currentError();
    }
    const std::lock_guard lock(mutex_);
    failure_ = failure;
    ended_ = true;
    changed_.notify_all();
}

bool ReadAhead::waitForRoom() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return stopping_ || blocks_.size() < blocksAhead; });
    return !stopping_;
}

void ReadAhead::put(std::vector<float> samples) {
    const std::lock_guard lock(mutex_);
    blocks_.push_back({std::move(samples), 0});
    changed_.notify_all();
}

}  // namespace audio::edit
