// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QString>

class QAbstractButton;
class QWidget;
namespace player {
class Deck;
class PlayerEngine;
}  // namespace player
namespace widgets {
class SkinSlider;
}

namespace app {

/// What of the main window the media keys press.
struct MediaControls {
    QWidget& window;
    player::PlayerEngine& engine;  ///< player 0
    player::Deck& deck;
    QAbstractButton& play;
    QAbstractButton& pause;
    QAbstractButton& stop;
    QAbstractButton& next;
    QAbstractButton& previous;
    widgets::SkinSlider& position;
    widgets::SkinSlider& volume;
    std::function<void(const QString& path)> open;  ///< adds a local file and plays it
};

/// Lets the desktop's media keys and panels work the deck as long as the answer lives, which all
/// controls must outlive. They press its buttons: what a click cannot do at the moment, they cannot
/// do either. Returns at once; null where there is no session bus or this system knows none. Window
/// thread.
std::unique_ptr<QObject> attachMediaKeys(const MediaControls& controls);

}  // namespace app
