// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

class QAbstractButton;
class QLabel;
namespace widgets {
class ListView;
class SkinSlider;
}  // namespace widgets

namespace player {

/// The controls of the window that the deck reads and writes. All outlive the deck.
struct DeckControls {
    widgets::ListView* list;                      ///< entries of player 0
    QLabel* nowPlaying;                           ///< title of the playing entry, or empty
    QLabel* positionText;                         ///< the engine's formatted position
    QLabel* percent;                              ///< "50%"
    widgets::SkinSlider* position;                ///< 0 to 100, percent
    widgets::SkinSlider* volume;                  ///< 0 to 99
    QAbstractButton* pause;                       ///< "Pause" or "Resume"
    std::array<QAbstractButton*, 9> editingLock;  ///< disabled from Play to Stop, in this order

    // Player 1, which only engine events and the position timer write to.
    widgets::ListView* list2;
    QLabel* percent2;
    QAbstractButton* pause2;
};

}  // namespace player
