// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stop_token>
#include <utility>

#include "platform/Error.h"

/// How long work is told to end. Whoever begins it binds a stop to the thread that works; threads
/// that launch() begins from there have it too; and every loop over a whole sound, however far
/// below, asks here. Where nothing is bound, nothing is stopped.
namespace audio::parallel {

/// Thrown out of work that was told to stop.
class Stopped : public platform::Error {
  public:
    Stopped() : platform::Error("The work was stopped.") {}
};

/// The stop of the calling thread.
std::stop_token currentStop();

/// Throws Stopped where the calling thread was told to stop. Costs next to nothing: once a packet
/// or block is often enough, and not too often.
void throwIfStopped();

/// Binds a stop to the calling thread while it lives.
class StopScope {
  public:
    explicit StopScope(std::stop_token stop);
    ~StopScope();
    StopScope(const StopScope&) = delete;
    StopScope& operator=(const StopScope&) = delete;

  private:
    std::stop_token before_;
};

}  // namespace audio::parallel
