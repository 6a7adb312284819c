// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/parallel/Stop.h"

namespace audio::parallel {
namespace {

thread_local std::stop_token current;

}  // namespace

std::stop_token currentStop() {
    return current;
}

void throwIfStopped() {
    if (current.stop_requested()) throw Stopped();
}

StopScope::StopScope(std::stop_token stop) : before_(std::exchange(current, std::move(stop))) {}

StopScope::~StopScope() {
    current = std::move(before_);
}

}  // namespace audio::parallel
