// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include <QObject>
#include <QString>

namespace player {

/// What PlaylistGetItemInfo is asked for.
enum ItemInfoKind : std::int32_t {
    ItemInfoPath = 0,       ///< full path
    ItemInfoName = 1,       ///< file name with its extension, without folder
    ItemInfoTitle = 10,     ///< title tag, may be empty
    ItemInfoDuration = 19,  ///< minutes ":" two digits of seconds; empty while unknown
};

enum PlayerStatus : std::int32_t { StatusStopped = 0, StatusPlaying = 1, StatusPaused = 2 };

enum PlaylistFormat : std::int32_t { FormatM3u = 0, FormatPls = 1 };

/// The player engine: two players, each with a playlist and a deck, mixed into one sound device (or
/// a clocked null output where there is none). Lives on the window thread; its workers reach it by
/// queued events only. It edits no sound file. No call throws; playlist calls answer 0 for success.
class PlayerEngine : public QObject {
    Q_OBJECT
  public:
    explicit PlayerEngine(QObject* parent = nullptr);
    ~PlayerEngine() override;

    void InitEngine(std::int16_t playerCount, std::intptr_t ownerWindow, std::int16_t = 0,
                    std::int16_t = 0, std::int16_t = 0, std::int16_t = 0);
    void LoadSound(std::int16_t player, const QString& path);  ///< works before InitEngine
    void PlaySound(std::int16_t player);                       ///< works before InitEngine
    void SetPlayerFlag(std::int16_t player, bool flag);        ///< accepted, without meaning

    // Playlists: entries by zero-based index.
    std::int32_t PlaylistLoad(std::int16_t player, const QString& path, std::int32_t replace);
    std::int32_t PlaylistSave(std::int16_t player, const QString& path, std::int32_t format);
    std::int16_t PlaylistGetCount(std::int16_t player) const;
    QString PlaylistGetItemInfo(std::int16_t player, std::int16_t index, std::int32_t kind) const;
    void PlaylistInsertFile(std::int16_t player, const QString& path, std::int16_t index);
    void PlaylistRemoveItem(std::int16_t player, std::int16_t index);
    void PlaylistMoveItem(std::int16_t player, std::int16_t from, std::int16_t to);

    // Transport.
    void PlaylistPlayItem(std::int16_t player, std::int16_t index);
    void PlaylistNext(std::int16_t player);
    void PlaylistPrevious(std::int16_t player);
    void Forward(std::int16_t player);  ///< ten seconds
    void Rewind(std::int16_t player);   ///< ten seconds
    void StopPlayer(std::int16_t player);
    void PausePlayer(std::int16_t player);
    void ResumePlayer(std::int16_t player);
    std::int32_t GetPlayerStatus(std::int16_t player) const;  ///< a PlayerStatus
    void SetVolume(std::int16_t player, std::int16_t level);  ///< 0 to 99, a loudness curve

    /// 4 = percent of the song, 0 = milliseconds; for GetPosition and Seek.
    std::int16_t PositionUnit() const;
    void SetPositionUnit(std::int16_t unit);
    std::int32_t GetPosition(
        std::int16_t player) const;  ///< heard position; negative = nothing loaded
    QString GetFormattedPosition(std::int16_t player, std::int32_t, std::int32_t) const;
    void Seek(std::int16_t player, std::int32_t position);

  Q_SIGNALS:
    void PlaybackStarted(int player);               ///< also after a resume
    void NowPlayingChanged(int player, int index);  ///< a new entry is heard
    void ItemInfoChanged(int player, int index);    ///< title or duration became known
    void PlaybackEnded(int player, int index);  ///< the list has run out, or nothing in it plays

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace player
