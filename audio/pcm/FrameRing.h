// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace audio::pcm {

/// Stereo frames on their way from one writing to one reading thread, without locks. Frames are
/// counted through from 0, for as long as the ring lives; the writer may tell the reader to go on
/// at a later frame and so drop what lies between.
class FrameRing {
  public:
    /// Room for 2^bits frames.
    explicit FrameRing(int bits)
        : capacity_(std::int64_t(1) << bits), samples_(std::size_t(2) << bits) {}

    std::int64_t capacity() const { return capacity_; }
    /// The number of the frame that is written next. Any thread.
    std::int64_t written() const { return written_.load(std::memory_order_acquire); }
    /// The number of the frame that is read next. Any thread.
    std::int64_t read() const { return read_.load(std::memory_order_acquire); }
    /// The frame that the reader is to go on at, at least; in the past once it has. Any thread.
    std::int64_t target() const { return target_.load(std::memory_order_acquire); }

    // The writing thread.

    std::size_t space() const { return std::size_t(capacity_ - (written() - read())); }
    /// Writes as many frames as there is room for; returns how many.
    std::size_t write(const float* stereo, std::size_t frames) {
        const std::size_t count = std::min(frames, space());
        const std::int64_t first = written();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = placeOf(first + std::int64_t(i));
            samples_[place] = stereo[2 * i];
            samples_[place + 1] = stereo[2 * i + 1];
        }
        written_.store(first + std::int64_t(count), std::memory_order_release);
        return count;
    }
    /// `frame` is at most written().
    void skipTo(std::int64_t frame) { target_.store(frame, std::memory_order_release); }

    // The reading thread.

    std::int64_t available() const { return written() - read(); }
    /// A frame that is available: two samples.
    const float* frame(std::int64_t number) const { return &samples_[placeOf(number)]; }
    /// Everything before this frame is done with.
    void advanceTo(std::int64_t frame) { read_.store(frame, std::memory_order_release); }

  private:
    std::size_t placeOf(std::int64_t frame) const {
        return 2 * std::size_t(frame & (capacity_ - 1));
    }

    const std::int64_t capacity_;
    std::vector<float> samples_;  // each frame belongs to the writer until written_ passes it
    std::atomic<std::int64_t> written_ = 0;
    std::atomic<std::int64_t> read_ = 0;
    std::atomic<std::int64_t> target_ = 0;
};

}  // namespace audio::pcm
