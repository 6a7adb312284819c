// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "audio/output/OutputDevice.h"

namespace audio::output {

/// Keeps sound flowing from a source to the best device there is, on a thread of its own, so that a
/// system that takes its time holds nobody up. Where no device can be opened, or the one in use
/// goes away or stands still, a clocked null output takes over within a second, and a device that
/// appears later takes over from that; each goes on with the frame that comes next. A device that
/// nothing plays on is closed after a minute. Calls from any thread.
class OutputKeeper {
  public:
    OutputKeeper(OpenDevice open, FrameSource& source);
    ~OutputKeeper();
    OutputKeeper(const OutputKeeper&) = delete;
    OutputKeeper& operator=(const OutputKeeper&) = delete;

    /// Closes the device for good: the source is asked no more.
    void shutDown();

    /// The rate that the device is to have; it is opened anew where it has another.
    void setRate(int rate);
    /// Whether anything plays. Nothing is opened before something does, at a known rate.
    void setPlaying(bool playing);

    /// The rate last asked for; 0 before the first.
    int rate() const { return rate_; }
    /// The device in use; empty where none is open.
    std::string deviceName() const;

  private:
    using Clock = std::chrono::steady_clock;

    void run();
    void attend();
    void replace(int rate);
    bool tryOpen(int rate);

    const OpenDevice open_;
    FrameSource& source_;
    std::atomic<int> rate_ = 0;

    mutable std::mutex mutex_;  // guards the next four
    std::condition_variable wake_;
    bool quit_ = false;
    bool playing_ = false;
    std::string name_;

    // The keeper's thread only.
    std::unique_ptr<OutputDevice> device_;
    bool standIn_ = false;  // device_ is the null output
    Clock::time_point lastPlaying_ = Clock::now();
    Clock::time_point nextTry_;
    std::chrono::milliseconds retry_{0};

    std::thread thread_;
};

}  // namespace audio::output
