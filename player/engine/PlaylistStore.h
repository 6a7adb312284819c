// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include "player/engine/ItemInfoReader.h"
#include "player/engine/Playlist.h"
#include "player/engine/Wake.h"

namespace lists {
struct ListedEntry;
}

namespace player {

constexpr int kPlayers = 2;

/// Minutes ":" two digits of seconds, to the nearest second; minutes may exceed 59. Empty for a
/// negative time.
QString formatDuration(std::int64_t milliseconds);

/// The playlists of all players and the workers that fill in titles and durations. Window thread
/// only (the playlists themselves may be read by any thread). Throws platform::Error where a list
/// cannot be written or grow; nothing has changed then.
class PlaylistStore : public QObject {
    Q_OBJECT
  public:
    explicit PlaylistStore(QObject* parent = nullptr);

    Playlist& list(int player) { return lists_[std::size_t(player)]; }
    const Playlist& list(int player) const { return lists_[std::size_t(player)]; }

    void fill(int player, const std::vector<lists::ListedEntry>& listed, bool replace);
    void save(int player, const QString& path, int format) const;
    void insert(int player, const QStringList& paths, int index);
    QString info(int player, int index, int kind) const;
    void prefer(int player, int first, int last);
    /// Reads title and duration anew of every entry of this path, which was written over. Raises
    /// infoChanged where they differ.
    void readAgain(const QString& path);
    /// What the decoder found out. Raises infoChanged.
    void correctDuration(int player, EntryId id, std::int64_t milliseconds);

  Q_SIGNALS:
    /// In portions of a few milliseconds each, so that thousands of them never hold up the window.
    void infoChanged(int player, int index);

  private:
    void readInfo(int player, const std::vector<Entry>& entries, bool first);
    void deliver();
    bool apply(const ItemInfoReader::Result& result);
    void announce(int player, EntryId id);

    std::array<Playlist, kPlayers> lists_;
    QTimer delivery_;
    Wake resultsCame_;  // by the reader's threads
    ItemInfoReader reader_;
};

}  // namespace player
