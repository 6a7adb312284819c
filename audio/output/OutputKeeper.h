// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <string>

#include "audio/output/DeviceLine.h"
#include "audio/output/NullOutput.h"
#include "audio/output/OutputDevice.h"

namespace audio::output {

/// Keeps sound flowing from a source to the best device there is. A watchdog, a thread of its own
/// that never calls a device, looks after it: what may hang in a sound system, opening and closing,
/// is done on a second thread. Where no device can be opened, or the one in use goes away, stands
/// still or does not open in time, a clocked null output takes over within a second or so; a device
/// that is there later takes over from that; each goes on with the frame that comes next. After
/// drop-outs the device is opened anew with a longer buffer. A device that nothing plays on is
/// closed after a minute. Calls from any thread; none waits for a device.
class OutputKeeper {
  public:
    OutputKeeper(OpenDevice open, FrameSource& source);
    ~OutputKeeper();
    OutputKeeper(const OutputKeeper&) = delete;
    OutputKeeper& operator=(const OutputKeeper&) = delete;

    /// Closes the device for good: the source is asked no more. A device that does not close within
    /// a second is left behind with its thread.
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
    void followLine();
    void adopt();
    void retire(std::chrono::milliseconds silence);
    void closeRetired();
    void beginOpening();
    void startStandIn();
    void finish();
    bool isIdle() const { return !line_ && !retired_ && !standIn_ && !hand_.busy(); }

    const OpenDevice open_;
    FrameSource& source_;
    std::atomic<int> rate_ = 0;

    const std::shared_ptr<Signal> signal_ = std::make_shared<Signal>();  // guards the next three
    bool quit_ = false;
    bool playing_ = false;
    std::string name_;

    // The watchdog's thread only.
    std::shared_ptr<DeviceLine> line_;     // to the device in use, or on the way to one
    std::shared_ptr<DeviceLine> retired_;  // to be closed once the hand is free
    std::unique_ptr<NullOutput> standIn_;  // never beside a line whose gate is open
    DeviceHand hand_{signal_};             // opens and closes
    bool adopted_ = false;                 // line_ brings the sound
    std::chrono::milliseconds buffer_;     // of the next device
    Clock::time_point standInFrom_;        // silence until then, if nothing is open
    Clock::time_point lastPlaying_ = Clock::now();
    Clock::time_point nextTry_;
    std::chrono::milliseconds retry_{0};

    std::future<void> thread_;
};

}  // namespace audio::output
