// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "audio/output/OutputDevice.h"

namespace audio::output {

/// What one thread waits on for others. Shared by all of them: who is left behind may still call.
struct Signal {
    std::mutex mutex;
    std::condition_variable wake;
    unsigned given = 0;  // guarded by mutex, which may guard more
    void operator()() {
        const std::lock_guard lock(mutex);
        ++given;
        wake.notify_all();
    }
};

/// Stands between a source and one device, and outlives the source where the device hangs: shut, it
/// gives silence.
class Gate final : public FrameSource {
  public:
    explicit Gate(FrameSource& source) : source_(&source) {}

    void open() { open_ = true; }
    /// When this returns the source is in use no more. It is used for microseconds at a time.
    void shut();

    void render(float* stereo, std::size_t frames, const Timing& timing) noexcept override;

  private:
    FrameSource* source_;  // valid while the gate is open
    std::atomic<bool> open_ = false;
    std::atomic<bool> inUse_ = false;  // set by the device's thread before it looks at open_
};

/// A device on its way from opening to closing, as the thread that watches it and the one that
/// works it share it.
struct DeviceLine {
    enum State { Opening, Running, Failed };

    explicit DeviceLine(FrameSource& source) : gate(source) {}

    Gate gate;
    std::atomic<State> state = Opening;
    std::unique_ptr<OutputDevice> device;  // the working thread's; the watcher's too once Running
};

/// Does one task at a time that may never return, on a thread that is left behind then: the only
/// thread that parallel::launch() cannot give, since it waits for all of its own.
class DeviceHand {
  public:
    explicit DeviceHand(std::shared_ptr<Signal> done) : done_(std::move(done)) {}
    ~DeviceHand();
    DeviceHand(const DeviceHand&) = delete;
    DeviceHand& operator=(const DeviceHand&) = delete;

    bool busy() const { return *busy_; }
    /// When the task in hand, or the last one, began.
    std::chrono::steady_clock::time_point since() const { return since_; }
    /// Not while busy. The signal is given when it is done.
    void start(std::function<void()> task);

  private:
    const std::shared_ptr<Signal> done_;
    std::shared_ptr<std::atomic<bool>> busy_ = std::make_shared<std::atomic<bool>>(false);
    std::chrono::steady_clock::time_point since_;
    std::thread thread_;
};

}  // namespace audio::output
