// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace audio::output {

/// How long so many frames last; exact for as long as a program may run.
constexpr std::chrono::nanoseconds durationOf(std::int64_t frames, int rate) {
    constexpr std::int64_t second = 1'000'000'000;
    return std::chrono::nanoseconds(frames / rate * second + frames % rate * second / rate);
}

/// What a device says of each block that it asks for. A plain value.
struct Timing {
    int rate = 0;                                       ///< Hz
    std::chrono::steady_clock::time_point heardFrom{};  ///< when its first frame begins to sound
};

/// Where a device gets its sound. Called on the device's own thread, by one device at a time.
class FrameSource {
  public:
    virtual ~FrameSource() = default;
    /// Writes `frames` interleaved stereo frames. Must not lock, allocate, throw or wait.
    virtual void render(float* stereo, std::size_t frames, const Timing& timing) noexcept = 0;
};

/// An open way for sound to go: it takes stereo float frames at one rate. Made, started and
/// destroyed by calls that may wait for the system, or never return; all others answer at once, on
/// any thread. It asks its source for sound from start() until it is destroyed.
class OutputDevice {
  public:
    virtual ~OutputDevice() = default;
    virtual void start() = 0;
    virtual int rate() const = 0;
    /// For a person: the system that takes the sound.
    virtual std::string name() const = 0;
    /// False once the device was removed or has stopped asking for sound.
    virtual bool alive() const = 0;
    /// How often it asked so late that what it had cannot have lasted.
    virtual int dropOuts() const { return 0; }
};

/// What a device is to be like.
struct DeviceWish {
    int rate = 0;                         ///< Hz
    std::chrono::milliseconds buffer{0};  ///< about this much is asked for at once
};

/// Opens a device, not started yet. Throws platform::Error where there is none.
using OpenDevice =
    std::function<std::unique_ptr<OutputDevice>(const DeviceWish& wish, FrameSource& source)>;

}  // namespace audio::output
