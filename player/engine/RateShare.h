// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <mutex>

#include "audio/output/OutputKeeper.h"
#include "player/engine/PlaylistStore.h"

namespace player {

/// Agrees the device's rate between the players: it is the rate of the sound that a player begins
/// with while the other one is silent, so that this sound comes through as it is. Any thread.
class RateShare {
  public:
    explicit RateShare(audio::output::OutputKeeper& keeper) : keeper_(keeper) {}

    /// A player begins; answers the rate that its sound must be brought to.
    int join(int player, int sourceRate) {
        const std::lock_guard lock(mutex_);
        users_[std::size_t(player)] = true;
        const bool alone = !users_[std::size_t(1 - player)];
        const bool usual = sourceRate >= 8000 && sourceRate <= 192000;
        if (alone || keeper_.rate() == 0) keeper_.setRate(usual ? sourceRate : 48000);
        return keeper_.rate();
    }
    /// A player has nothing to play any more.
    void leave(int player) {
        const std::lock_guard lock(mutex_);
        users_[std::size_t(player)] = false;
    }

  private:
    audio::output::OutputKeeper& keeper_;
    std::mutex mutex_;  // guards users_, and the rate against a change by the other player
    std::array<bool, kPlayers> users_{};
};

}  // namespace player
