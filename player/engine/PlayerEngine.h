// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <QObject>
#include <QString>
#include <QStringList>

namespace audio::dsp {
struct Peaks;
}
namespace lists {
struct ListedEntry;
}

namespace player {

struct EngineParts;

/// What PlaylistGetItemInfo is asked for.
enum ItemInfoKind : std::int32_t {
    ItemInfoPath = 0,       ///< full path
    ItemInfoName = 1,       ///< file name with its extension, without folder
    ItemInfoTitle = 10,     ///< title tag, may be empty
    ItemInfoDuration = 19,  ///< minutes ":" two digits of seconds; empty while unknown
};

enum PlayerStatus : std::int32_t { StatusStopped = 0, StatusPlaying = 1, StatusPaused = 2 };

enum PlaylistFormat : std::int32_t { FormatM3u = 0, FormatPls = 1 };

/// The unit of GetPosition and Seek.
enum PositionUnitValue : std::int16_t { UnitMilliseconds = 0, UnitPercent = 4 };

/// The player engine: two players, each with a playlist and a deck, mixed into one sound device (or
/// a clocked null output where there is none). It edits no sound file and opens no URL.
///
/// Lives on the thread that made it, which needs an event loop: every call comes from there and
/// every signal is raised there, never from within a call. No call throws and none waits for a
/// decoder or a device; the playlist calls that read titles wait up to 150 ms for them, and
/// ReleaseFile up to 50 ms for the decoders. A player
/// number other than 0 and 1, or an index outside the playlist, makes a call do nothing.
///
/// Order of events: after a play command, PlaybackStarted when the first frames are ready, then
/// NowPlayingChanged when they are heard; NowPlayingChanged alone at each later entry;
/// PlaybackEnded when the last frame of the last entry was heard. StopPlayer raises nothing.
class PlayerEngine : public QObject {
    Q_OBJECT
  public:
    explicit PlayerEngine(QObject* parent = nullptr);
    /// With a sound output and a decoder of the caller's choice.
    explicit PlayerEngine(const EngineParts& parts, QObject* parent = nullptr);
    /// Stops both players and waits for their threads.
    ~PlayerEngine() override;

    /// Sound played before goes on. The owner window and the four numbers have no meaning here.
    void InitEngine(std::int16_t playerCount, std::intptr_t ownerWindow, std::int16_t = 0,
                    std::int16_t = 0, std::int16_t = 0, std::int16_t = 0);
    /// Puts one file, that is no entry of the playlist, on a player; a file that cannot be opened
    /// leaves the player without a sound. Works before InitEngine.
    void LoadSound(std::int16_t player, const QString& path);
    /// Plays from the start what LoadSound put there, or the entry that StopPlayer returned to.
    /// A loaded sound plays alone: the playlist does not follow it. Works before InitEngine.
    void PlaySound(std::int16_t player);
    void SetPlayerFlag(std::int16_t player, bool flag);  ///< accepted, without meaning

    // Playlists: entries by zero-based index, at most 32,767 of them. What follows a playing entry
    // is settled two seconds before its end: an edit later than that does not change it.

    /// Reads an M3U or PLS file (told apart by what is in it) in place of the player's entries
    /// (replace ≠ 0) or after them (0). Answers 0, or 1 and changes nothing: the file cannot be
    /// read, is no playlist, or the entries are too many; LastError() says which. A playing entry
    /// plays on, as the new list's first entry of the same path where there is one.
    std::int32_t PlaylistLoad(std::int16_t player, const QString& path, std::int32_t replace);
    /// The same with entries that were read already, by whoever does not want to wait for the disk.
    std::int32_t PlaylistFill(std::int16_t player, const std::vector<lists::ListedEntry>& entries,
                              std::int32_t replace);
    /// Writes the entries as a PlaylistFormat, whole or not at all. Answers 0, or 1; see
    /// LastError().
    std::int32_t PlaylistSave(std::int16_t player, const QString& path, std::int32_t format);
    std::int16_t PlaylistGetCount(std::int16_t player) const;
    /// Text of an ItemInfoKind; empty where the index or the kind does not exist.
    QString PlaylistGetItemInfo(std::int16_t player, std::int16_t index, std::int32_t kind) const;
    /// Inserts in front of the entry at index (clamped to the list). A full list stays as it is.
    void PlaylistInsertFile(std::int16_t player, const QString& path, std::int16_t index);
    /// The same for many files at once, in their order, with one wait for all of them. All or none:
    /// answers 0, or 1 where they are too many.
    std::int32_t PlaylistInsertFiles(std::int16_t player, const QStringList& paths,
                                     std::int16_t index);
    void PlaylistRemoveItem(std::int16_t player, std::int16_t index);
    /// Afterwards the entry that was at `from` is at `to`.
    void PlaylistMoveItem(std::int16_t player, std::int16_t from, std::int16_t to);
    /// Titles and durations of the entries first … last are read before those of the others.
    void PlaylistPrefer(std::int16_t player, std::int16_t first, std::int16_t last);
    /// The index of the entry that is heard, or that Stop returned to; -1 where there is none.
    std::int16_t PlaylistNowPlaying(std::int16_t player) const;

    // Transport. An entry that cannot be played is skipped in the direction of travel; where none
    // is left at the end of one, playback ends.

    void PlaylistPlayItem(std::int16_t player, std::int16_t index);
    /// The neighbour of the current entry: it plays, is held paused, or is cued, as the current one
    /// was. Until it is found, and where no neighbour can be played, the current one goes on.
    /// Before anything was played nothing happens. Ends an overlay (FadePlayer), as playing an
    /// entry does: what the player was faded out of then gives way to the neighbour.
    void PlaylistNext(std::int16_t player);
    void PlaylistPrevious(std::int16_t player);
    void Forward(std::int16_t player);  ///< ten seconds, at most to the end of the entry
    void Rewind(std::int16_t player);   ///< ten seconds, at most to the start of the entry
    /// Silence, and back to the start of the entry. Ends an overlay (FadePlayer) on both players.
    void StopPlayer(std::int16_t player);
    void PausePlayer(std::int16_t player);  ///< holds the exact frame
    void ResumePlayer(std::int16_t player);
    std::int32_t GetPlayerStatus(std::int16_t player) const;  ///< a PlayerStatus
    /// 0 (silent) to 99 (the file's own samples, unchanged), clamped; the gain is the cube of the
    /// share. Holds for all that the player plays. 99 at the start.
    void SetVolume(std::int16_t player, std::int16_t level);
    /// Over the next `milliseconds` of the player's sound (a seek that still runs included), takes
    /// the level from one value to another, each 0 to 99 of the volume set. A stopped player with a
    /// sound loaded starts with it, as an overlay: StopPlayer of either player then ends both. At
    /// the end of a fade to 0 the player stops. The fade belongs to the sound that is on: another
    /// entry or sound that is put on, and Stop, end it.
    ///
    /// The second half-minute of entry i fades out under another file on player 1:
    /// PlaylistPlayItem(0, i), SeekMs(0, 30000), FadePlayer(0, 99, 0, 30000), LoadSound(1, file),
    /// FadePlayer(1, 0, 99, 30000).
    void FadePlayer(std::int16_t player, std::int16_t fromLevel, std::int16_t toLevel,
                    std::int32_t milliseconds);

    /// A PositionUnitValue; other values are taken for milliseconds. Milliseconds at the start.
    std::int16_t PositionUnit() const;
    void SetPositionUnit(std::int16_t unit);
    /// The heard position (or the target of a seek not heard yet) in the current unit; negative =
    /// nothing loaded: at the start, and after the list has run out.
    std::int32_t GetPosition(std::int16_t player) const;
    /// The heard position as minutes ":" two digits of seconds, and " / " and the length in the
    /// same form where it is known ("1:05 / 4:20"); empty where nothing is loaded. The two numbers
    /// have no meaning here.
    QString GetFormattedPosition(std::int16_t player, std::int32_t, std::int32_t) const;
    /// To an exact frame of the current entry, clamped to it, in the current unit. Does nothing
    /// while stopped.
    void Seek(std::int16_t player, std::int32_t position);
    /// The same as GetPosition and Seek, in milliseconds whatever PositionUnit is.
    std::int64_t PositionMs(std::int16_t player) const;
    void SeekMs(std::int16_t player, std::int64_t position);
    /// The length of what is loaded, milliseconds; -1 while unknown or where nothing is loaded.
    std::int64_t LengthMs(std::int16_t player) const;

    // What the displays draw.

    /// The peaks of the current entry, made by a worker since the entry was put on; a fuller
    /// version follows each PeaksChanged. Null while there are none. The value never changes.
    std::shared_ptr<const audio::dsp::Peaks> Peaks(std::int16_t player) const;
    /// Fills `bands` (low to high, logarithmic from 40 Hz to 16 kHz, each 0 … 1 for -72 … 0 dB)
    /// with the spectrum of what is heard of the player. False, and all zero, where nothing sounds.
    bool Spectrum(std::int16_t player, std::span<float> bands) const;

    /// Closes every handle the engine has on a file and keeps the place; a decoder that is deep in
    /// the file closes it as soon as it can. AcquireFile opens it again and goes on there, and
    /// reads title, duration and peaks anew. Pairs, through FileRelease.
    void ReleaseFile(const QString& path);
    void AcquireFile(const QString& path);

    /// Whether the next frames of both players are decoded, or no more can come before these are
    /// taken: who takes the sound faster than a device does waits for it, and misses none. Any
    /// thread.
    bool IsReady(std::size_t frames) const;

    /// A sentence on the last call that failed; empty before the first.
    QString LastError() const;
    /// What sound goes to, for a person: the device's driver, or that there is none.
    QString OutputName() const;

  Q_SIGNALS:
    void PlaybackStarted(int player);               ///< also after a resume
    void NowPlayingChanged(int player, int index);  ///< a new entry is heard
    void ItemInfoChanged(int player, int index);    ///< title or duration became known
    void PlaybackEnded(int player, int index);  ///< the list has run out, or nothing in it plays
    void PeaksChanged(int player);              ///< Peaks() answers something new

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

/// While it lives, the engine holds no handle on one file, so that the file can be replaced; a
/// player that has it open goes on at the same place in the new one.
class FileRelease {
  public:
    FileRelease(PlayerEngine& engine, const QString& path) : engine_(engine), path_(path) {
        engine_.ReleaseFile(path_);
    }
    ~FileRelease() { engine_.AcquireFile(path_); }
    FileRelease(const FileRelease&) = delete;
    FileRelease& operator=(const FileRelease&) = delete;

  private:
    PlayerEngine& engine_;
    QString path_;
};

}  // namespace player
