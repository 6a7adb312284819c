// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "player/deck/DeckControls.h"

namespace player {

class PlayerEngine;

/// The commands of the player deck: turns presses into calls of the engine, mirrors the engine in
/// labels and slider, and locks the editing of the list from Play to Stop. It drives player 0; of
/// player 1 it only shows the state. Window thread only.
class Deck {
  public:
    Deck(PlayerEngine& engine, const DeckControls& controls);

    // Transport.
    void Play();  ///< sets the editing lock, also where there is nothing to play
    void Stop();  ///< the only thing that releases it
    void PauseOrResume();
    void Next();
    void Previous();
    void Forward();
    void Rewind();
    void PositionChanged();  ///< the user moved the position slider; yields to pending events
    void VolumeChanged();
    /// To a place in the current entry, 0 to 1.
    void SeekTo(double share);
    void SeekToMs(std::int64_t position);

    /// Hears how two entries overlap: the second half-minute of the selected one fades out while
    /// the next one (after the last, the first) fades in on player 1. Stop ends both.
    void TestFadeOverlay();

    /// From Play to Stop, while the editing of the list is locked.
    bool locked() const { return locked_; }
    /// Whether one key for both would have to play, not to pause or resume.
    bool idle() const;
    /// Percent, position text, slider, and the mark on the row that plays, every half second.
    void ShowPosition();

    // Events of the engine.
    void PlaybackStarted(int player);
    void NowPlayingChanged(int player, int index);

  private:
    void PlaySelectedEntry();
    void lockEditing(bool locked);
    void showSelectedTitle();
    void showTitleOfWhatPlays();
    void markPlayingRow();

    PlayerEngine& engine_;
    DeckControls controls_;
    bool locked_ = false;
};

}  // namespace player
