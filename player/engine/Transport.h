// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include <QObject>
#include <QString>

#include "player/engine/PlaylistStore.h"
#include "player/engine/Voice.h"

namespace player {

/// One player as its user sees it: what is loaded, whether it plays, where it stands. Turns
/// commands into orders for the voice, and what the voice reports and what is heard of it into
/// events. Engine thread only; no call waits.
class Transport : public QObject {
    Q_OBJECT
  public:
    Transport(int player, PlaylistStore& store, Voice& voice, QObject* parent = nullptr);

    void loadSound(const QString& path);
    void playSound();
    void playItem(int index);
    /// While something is on, the neighbour takes its place once it is found; where none can be
    /// played, what is on goes on.
    void step(int direction);
    void stop();
    void pause();
    void resume();
    /// False where nothing is loaded.
    bool fade(int from, int to, std::int64_t milliseconds);

    int status() const { return status_; }
    bool isLoaded() const { return loaded_; }
    /// The index of the current entry, or -1.
    int nowPlaying() const;
    /// The file that is on; empty where nothing is loaded.
    QString path() const { return loaded_ ? path_ : QString(); }

    std::int64_t positionMs() const;  ///< -1 where nothing is loaded
    int positionPercent() const;      ///< the same
    std::int64_t lengthMs() const;    ///< -1 while unknown
    void seekMs(std::int64_t milliseconds);
    void seekPercent(double percent);
    void seekBy(std::int64_t milliseconds);

    /// Entries were taken off the list: a stopped player holds on to none of them.
    void followList();
    /// A file was written over: what was known of it is known no more.
    void forget(const QString& path);

    /// Takes in what happened: at the voice's news, and often while it plays.
    void poll();

  Q_SIGNALS:
    void statusChanged();
    void started();
    void nowPlayingChanged(int index);
    void ended(int index);
    void unloaded();  ///< the entry that a stop returned to is gone

  private:
    struct Place {
        std::int64_t frame = 0;
        std::int64_t length = -1;
        int rate = 0;
    };

    void cue(const Entry& entry);
    void open(EntryId id, const QString& path, int direction);
    void setStatus(int status);
    void take(const Voice::News& news);
    void takeStep(const Voice::News& news);
    void takeOpened(const Mark& mark);
    void followEar();
    void becomeCurrent(const Mark& mark);
    void finish();
    void seek(const SeekTarget& target);
    Place place() const;
    std::optional<SeekTarget> pendingSeek() const;
    std::optional<Mark> heardMark(std::int64_t& heard) const;

    const int player_;
    PlaylistStore& store_;
    Voice& voice_;

    int status_ = 0;  // a PlayerStatus
    bool loaded_ = false;
    EntryId id_ = 0;  // of what is loaded; 0: path_ alone
    QString path_;
    unsigned opening_ = 0;    // the order that is on; 0 after a stop
    bool opened_ = false;     // the order that is on was obeyed
    unsigned start_ = 0;      // of the mark whose entry was announced last
    unsigned stepping_ = 0;   // the order to go to a neighbour, while it is under way
    EntryId steppingTo_ = 0;  // the neighbour that it begins with
    Place stoppedAt_;         // length and rate outlast the stop
    std::optional<SeekTarget> seeking_;
    unsigned seekNumber_ = 0;
};

}  // namespace player
