// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <future>
#include <mutex>
#include <vector>

#include "audio/output/OutputDevice.h"

namespace audio::output {

/// Stands in for a sound device: takes sound at the pace that a device would, and drops it. Always
/// alive.
class NullOutput final : public OutputDevice {
  public:
    NullOutput(int rate, FrameSource& source);
    ~NullOutput() override;

    void start() override;
    int rate() const override { return rate_; }
    std::string name() const override { return "no sound device"; }
    bool alive() const override { return true; }

  private:
    void run();

    const int rate_;
    FrameSource& source_;
    std::vector<float> block_;
    std::mutex mutex_;  // guards quit_
    std::condition_variable wake_;
    bool quit_ = false;
    std::future<void> thread_;
};

}  // namespace audio::output
