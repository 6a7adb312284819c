// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>

class QLabel;
namespace player {
class PlayerEngine;
}
namespace widgets {
class CommonDialog;
class ListView;
}  // namespace widgets

namespace playlist {

class PlaylistCommands;

/// Saving and loading the list as a file. The current playlist caption, a label's text, is all that
/// is remembered of the file: its bare path after a load, "Playlist loaded: " and the path after a
/// save. Formats are the engine's matter. Window thread only.
class PlaylistFiles {
  public:
    /// All must outlive this object.
    PlaylistFiles(player::PlayerEngine& engine, PlaylistCommands& commands,
                  widgets::CommonDialog& dialog, QLabel& caption);

    /// Asks where, and writes: M3U or PLS by the filter chosen, not by the name typed.
    void SavePlaylistCommand(std::int16_t player);
    /// Asks which, and loads it in place of the list.
    void LoadPlaylistCommand(std::int16_t player, widgets::ListView& view);
    /// Loads the file that the caption names. After a save the caption names none, and this fails
    /// with the message.
    void ReloadPlaylist(std::int16_t player, widgets::ListView& view);
    /// Loads a file; after a failure, which it shows, list and caption are as they were.
    bool Load(std::int16_t player, widgets::ListView& view, const QString& path);

  private:
    player::PlayerEngine& engine_;
    PlaylistCommands& commands_;
    widgets::CommonDialog& dialog_;
    QLabel& caption_;
};

}  // namespace playlist
