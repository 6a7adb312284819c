// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "lists/ListReader.h"

class QLabel;
namespace player {
class PlayerEngine;
}
namespace widgets {
class CommonDialog;
class ListView;
}  // namespace widgets

namespace playlist {

class DiskQueue;
class PlaylistCommands;

/// A playlist file as it was read; no entries where it could not be.
struct ReadList {
    QString path;
    std::optional<std::vector<lists::ListedEntry>> entries;
};
/// Any thread, for as long as the disk takes.
ReadList readList(const QString& path);

/// Saving and loading the list as a file. The current playlist caption, a label's text, is all that
/// is remembered of the file: its bare path after a load, "Playlist loaded: " and the path after a
/// save. Formats are the engine's matter. Lists are read by the disk queue: what is loaded may be
/// shown, or refused, after the call has returned. Window thread only.
class PlaylistFiles {
  public:
    /// All must outlive this object.
    PlaylistFiles(player::PlayerEngine& engine, PlaylistCommands& commands,
                  widgets::CommonDialog& dialog, DiskQueue& disk, QLabel& caption);

    /// Asks where, and writes: M3U or PLS by the filter chosen, not by the name typed.
    void SavePlaylistCommand(std::int16_t player);
    /// Asks which, and loads it in place of the list.
    void LoadPlaylistCommand(std::int16_t player, widgets::ListView& view);
    /// Loads the file that the caption names. After a save the caption names none, and this fails
    /// with the message.
    void ReloadPlaylist(std::int16_t player, widgets::ListView& view);
    /// Loads a file; after a failure, which it shows, list and caption are as they were.
    void Load(std::int16_t player, widgets::ListView& view, const QString& path);
    /// The same where a command has a caption and messages of its own: a failure is passed over.
    void LoadInSilence(std::int16_t player, widgets::ListView& view, const QString& path);
    /// Shows what was read, or that it could not be.
    void Show(std::int16_t player, widgets::ListView& view, const ReadList& read);

  private:
    bool fill(std::int16_t player, widgets::ListView& view, const ReadList& read);

    player::PlayerEngine& engine_;
    PlaylistCommands& commands_;
    widgets::CommonDialog& dialog_;
    DiskQueue& disk_;
    QLabel& caption_;
};

}  // namespace playlist
