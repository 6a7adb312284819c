// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <ctime>

namespace support {

/// How long the calling thread has worked since the clock was made or started again, in
/// milliseconds. It stands still while other programs, or other threads, have the processor: a
/// bound that holds on a quiet machine holds on a busy one.
class CpuClock {
  public:
    std::int64_t elapsed() const { return now() - start_; }
    std::int64_t restart() {
        const std::int64_t passed = elapsed();
        start_ += passed;
        return passed;
    }

  private:
    static std::int64_t now() {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
    }
    std::int64_t start_ = now();
};

}  // namespace support
