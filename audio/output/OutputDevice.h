// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace audio::output {

/// How many frames a device asks for at once.
constexpr int kBlockFrames = 2048;

/// What a device says of itself with every block. A plain value.
struct Timing {
    int rate = 0;           ///< Hz
    int latencyFrames = 0;  ///< from the hand-over of a block to the moment it begins to be heard
    bool clocked = true;    ///< false: whatever is handed over counts as heard at once
};

/// Where a device gets its sound. Called on the device's own thread, by one device at a time.
class FrameSource {
  public:
    virtual ~FrameSource() = default;
    /// Writes `frames` interleaved stereo frames. Must not lock, allocate, throw or wait.
    virtual void render(float* stereo, std::size_t frames, const Timing& timing) noexcept = 0;
};

/// An open way for sound to go: it takes stereo float frames at one rate. Made and destroyed on one
/// thread, which may wait for the system. It asks its source for sound from start() until it is
/// destroyed.
class OutputDevice {
  public:
    virtual ~OutputDevice() = default;
    virtual void start() = 0;
    virtual int rate() const = 0;
    /// For a person: the system that takes the sound.
    virtual std::string name() const = 0;
    /// False once the device was removed or has stopped asking for sound.
    virtual bool alive() const = 0;
};

/// Opens a device at a rate, not started yet. Throws platform::Error where there is none.
using OpenDevice = std::function<std::unique_ptr<OutputDevice>(int rate, FrameSource& source)>;

}  // namespace audio::output
