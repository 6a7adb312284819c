// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/output/DeviceLine.h"

#include <algorithm>
#include <utility>

#include "platform/ThreadName.h"

namespace audio::output {

void Gate::shut() {
    open_ = false;
    while (inUse_) std::this_thread::yield();
}

void Gate::render(float* stereo, std::size_t frames, const Timing& timing) noexcept {
    inUse_ = true;
    if (open_)
        source_->render(stereo, frames, timing);
    else
        std::fill_n(stereo, 2 * frames, 0.0F);
    inUse_ = false;
}

DeviceHand::~DeviceHand() {
    if (!thread_.joinable()) return;
    if (busy())
        thread_.detach();
    else
        thread_.join();
}

void DeviceHand::start(std::function<void()> task) {
    if (thread_.joinable()) thread_.join();
    *busy_ = true;
    since_ = std::chrono::steady_clock::now();
    thread_ = std::thread([task = std::move(task), busy = busy_, done = done_]() mutable {
        platform::nameThisThread("device");
        task();
        task = nullptr;  // what it holds ends here
        *busy = false;
        (*done)();
    });
}

}  // namespace audio::output
