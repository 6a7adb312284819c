// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/read/DamageLimiter.h"

#include <algorithm>
#include <cmath>

namespace audio::mpeg {
namespace {

// 24 dB above full scale: twice what a loud master raised to four times its level comes to.
constexpr float beyondReach = 16;

// What is not a number is not.
bool withinReach(std::span<const float> frame) {
    bool within = true;
    for (const float sample : frame) within &= std::fabs(sample) <= beyondReach;
    return within;
}

}  // namespace

bool DamageLimiter::apply(std::span<float> frame, bool damaged) {
    const bool garbage = !withinReach(frame);
    damaged = damaged || garbage;
    if (garbage) std::fill(frame.begin(), frame.end(), 0.0F);
    if (damaged || afterDamage_)
        for (float& sample : frame) sample = std::clamp(sample, -1.0F, 1.0F);
    afterDamage_ = damaged;
    return damaged;
}

}  // namespace audio::mpeg
