// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <mutex>

#include "audio/output/OutputKeeper.h"
#include "player/engine/PlaylistStore.h"

namespace player {

/// The rate of a device that lets a sound of this rate through whole: 44.1 or 48 kHz, whichever is
/// of the sound's family, and the next usual rate for a sound above them.
inline int deviceRateFor(int sourceRate) {
    constexpr std::array<int, 4> high = {88200, 96000, 176400, 192000};
    const bool ofCd = sourceRate % 11025 == 0;
    if (sourceRate <= 48000) return ofCd ? 44100 : 48000;
    const auto* const rate = std::lower_bound(high.begin(), high.end(), sourceRate);
    if (rate != high.end()) return *rate;
    return ofCd ? 176400 : 192000;
}

/// Agrees the device's rate between the players: a sound that is begun with may raise it while the
/// other player is silent, and nothing lowers it, so that no sound is heard through the band of a
/// slower one. Any thread.
class RateShare {
  public:
    explicit RateShare(audio::output::OutputKeeper& keeper) : keeper_(keeper) {}

    /// A player begins; answers the rate that its sound must be brought to.
    int join(int player, int sourceRate) {
        const std::lock_guard lock(mutex_);
        users_[std::size_t(player)] = true;
        const int wanted = deviceRateFor(sourceRate);
        const bool first = keeper_.rate() == 0;
        if (first || (isAlone(player) && wanted > keeper_.rate())) keeper_.setRate(wanted);
        return keeper_.rate();
    }
    /// Whether join() is to be asked again for a sound that follows another one. Between 44.1 and
    /// 48 kHz it is not: both hold all that is heard, and the device plays on without a break.
    bool raises(int player, int sourceRate) {
        const std::lock_guard lock(mutex_);
        return sourceRate > 48000 && isAlone(player) && deviceRateFor(sourceRate) > keeper_.rate();
    }
    /// A player has nothing to play any more.
    void leave(int player) {
        const std::lock_guard lock(mutex_);
        users_[std::size_t(player)] = false;
    }

  private:
    bool isAlone(int player) const { return !users_[std::size_t(1 - player)]; }

    audio::output::OutputKeeper& keeper_;
    std::mutex mutex_;  // guards users_, and the rate against a change by the other player
    std::array<bool, kPlayers> users_{};
};

}  // namespace player
