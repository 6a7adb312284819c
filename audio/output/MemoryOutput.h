// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include "audio/output/OutputDevice.h"

namespace audio::output {

/// Gives sound to whoever pulls, at his pace, instead of playing it; what was pulled counts as
/// heard at once. He waits himself until there is something to pull. For tests.
class MemoryOutput final : public OutputDevice {
  public:
    MemoryOutput(int rate, FrameSource& source) : timing_{rate, {}}, source_(source) {}

    void start() override {}
    int rate() const override { return timing_.rate; }
    std::string name() const override { return "memory"; }
    bool alive() const override { return true; }

    /// Takes a block from the source and returns it, interleaved.
    std::vector<float> pull(std::size_t frames) {
        std::vector<float> block(2 * frames);
        source_.render(block.data(), frames, timing_);
        return block;
    }

  private:
    const Timing timing_;
    FrameSource& source_;
};

}  // namespace audio::output
