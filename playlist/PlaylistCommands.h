// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>
#include <QStringList>

namespace player {
class PlayerEngine;
}
namespace widgets {
class CommonDialog;
class ListView;
}  // namespace widgets

namespace playlist {

/// The editing commands of the list. The playlist itself lives in the player engine; the view is a
/// projection of it, rebuilt after each change, and holds no paths. Rows count from 1, entries from
/// 0: entry = row - 1. Window thread only; nothing is thrown, a refusal of the engine is not
/// reported.
class PlaylistCommands {
  public:
    /// All must outlive this object.
    PlaylistCommands(player::PlayerEngine& engine, widgets::CommonDialog& dialog);

    /// Rebuilds the view from the engine; the first row is the selected one afterwards.
    void FillPlayListView(std::int16_t player, widgets::ListView& view);
    /// Brings one row up to date with what the engine knows now.
    void updateRow(std::int16_t player, widgets::ListView& view, int row);

    /// Has the engine read titles and durations of the rows on screen before all others. After a
    /// fill this is done already.
    void PreferShownRows(std::int16_t player, const widgets::ListView& view);

    /// Asks for a file and inserts it in front of the selected entry.
    void AddFileToPlaylist(std::int16_t player, widgets::ListView& view);
    void RemoveSelectedEntry(std::int16_t player, widgets::ListView& view);
    void MoveSelectedEntry(std::int16_t player, widgets::ListView& view, bool up);
    /// The same as removing the selected entry as often as there are rows.
    void ClearList(std::int16_t player, widgets::ListView& view);
    /// Inserts files in their order in front of a row (rowCount() + 1 = behind the last), selects
    /// the first of them. All or none; false where they are too many for the list.
    bool InsertFiles(std::int16_t player, widgets::ListView& view, const QStringList& files,
                     int row);

  private:
    void showRow(widgets::ListView& view, int row);

    player::PlayerEngine& engine_;
    widgets::CommonDialog& dialog_;
};

}  // namespace playlist
