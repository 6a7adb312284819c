// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <QString>

#include "player/engine/Playlist.h"
#include "player/engine/SoundSource.h"
#include "player/engine/StereoConverter.h"
#include "player/engine/VoiceChannel.h"

namespace player {

/// What a stretch of a ring holds, from one frame of it to the next mark. A plain value.
struct Mark {
    std::int64_t ringFrame = 0;
    unsigned opening = 0;          ///< the play command that this goes back to
    unsigned start = 0;            ///< counts the entries begun; a seek begins none
    unsigned seek = 0;             ///< the latest seek it obeys
    EntryId id = 0;                ///< 0 for a sound that is no entry
    std::int64_t sourceFrame = 0;  ///< where in the source it begins
    std::int64_t length = -1;      ///< of the source in frames; -1 while unknown
    int sourceRate = 0;
    int ringRate = 0;
    bool end = false;  ///< nothing follows
};

/// A place in a sound: the frame nearest to a time, or a share of the whole.
struct SeekTarget {
    std::int64_t milliseconds = 0;
    std::optional<double> percent;
};

/// What is to be played. A plain value.
struct Opening {
    unsigned number = 0;
    EntryId id = 0;  ///< 0: path alone, which no entry follows
    QString path;
    int direction = 1;  ///< where to look on if it cannot be played
    bool step = false;  ///< what is on goes on until that is found, and where nothing is
};

/// Decodes one entry after the other, without a gap, into a voice's ring, and keeps account of what
/// lies where in it. The decoder thread's, all but markAt().
class TrackFeed {
  public:
    struct Seek {
        SeekTarget target;
        unsigned number = 0;
    };

    /// Who gives the orders.
    class Host {
      public:
        virtual ~Host() = default;
        /// Whether another opening or a closing waits: nothing that is opened now is wanted.
        virtual bool isSuperseded() = 0;
        /// The seek that was asked for while an opening was under way, and is none any more.
        virtual std::optional<Seek> takeSeek() = 0;
        /// The rate of the ring for a sound that is begun with; and that there is none any more.
        virtual int joinRate(int sourceRate) = 0;
        virtual void leaveRate() = 0;
        /// Whether the ring's rate is to be raised for a sound that follows.
        virtual bool raisesRate(int sourceRate) = 0;
    };

    TrackFeed(VoiceChannel& channel, const Playlist& playlist, OpenSound openSound, Host& host);

    /// Opens the first playable entry from this one on and makes it what is mixed next. False where
    /// nothing can be played (the ring falls silent then, but for a step), or another opening
    /// waits.
    bool open(const Opening& opening);
    /// Goes on at another place of what the mark belongs to.
    void seek(const Mark& heard, const Seek& seek);
    void fade(double from, double to, std::int64_t milliseconds);
    void close();

    /// Closes a file and keeps the place.
    void release(const QString& path);
    void acquire(const QString& path);

    /// Whether feed() has work that cannot wait.
    bool hungry() const;
    /// Moves some frames into the ring; at the end of one entry goes on with the next.
    void feed();
    bool isOpen() const { return source_ || raises_; }
    bool atEnd() const { return atEnd_; }
    /// Whether feed() can bring frames into a ring that has room.
    bool canFeed() const { return source_ ? !atEnd_ : raises_ && outputDone_ < output_.size(); }
    /// Whether an entry of a higher rate begins once the ring has been played.
    bool drains() const { return bool(raises_); }
    /// Finds out the length of what is open where that is unknown; true where it is news.
    bool learnLength();
    /// What is open: the mark made last.
    Mark latest() const;

    /// The mark that a frame of the ring lies behind. Any thread.
    std::optional<Mark> markAt(std::int64_t ringFrame) const;

  private:
    struct Track {
        EntryId id = 0;
        QString path;
        std::unique_ptr<SoundSource> source;
    };

    std::unique_ptr<SoundSource> tryOpen(const QString& path) const;
    std::optional<Track> openFrom(Track track, int direction, bool feeding);
    void clear();
    void adopt(Track track, unsigned start);
    void raise();
    bool backTo(const Mark& heard);
    std::optional<Track> takeNext();
    void prepareNext();
    void begin(std::int64_t frame);
    bool seekSource(std::int64_t frame);
    void acknowledgeSeek();
    std::int64_t frameOf(const SeekTarget& target);
    void prefill();
    void readOn();
    void advance();
    void drain();
    void silence();
    void addMark(std::int64_t ringFrame, std::int64_t sourceFrame, bool end);
    std::int64_t produced() const;
    void convertFrom(std::int64_t ringFrame);

    VoiceChannel& channel_;
    const Playlist& playlist_;
    const OpenSound openSound_;
    Host& host_;

    std::unique_ptr<SoundSource> source_;
    QString path_;
    EntryId id_ = 0;
    std::unique_ptr<StereoConverter> converter_;
    std::int64_t converterStart_ = 0;  // the ring frame that the converter's first result became
    std::vector<float> input_;
    std::vector<float> output_;  // converted, not all in the ring yet
    std::size_t outputDone_ = 0;
    bool atEnd_ = false;
    std::optional<std::int64_t> released_;  // the frame to go on with, while the file is released
    Track next_;                            // opened ahead
    EntryId triedNext_ = 0;
    std::optional<Track> raises_;  // begins at a higher rate of the ring, once that is played
    QString held_;                 // a released file: it is not opened ahead

    unsigned opening_ = 0;
    unsigned start_ = 0;
    unsigned starts_ = 0;
    unsigned seek_ = 0;
    int sourceRate_ = 0;
    std::int64_t length_ = -1;
    int ringRate_ = 0;

    mutable std::mutex mutex_;  // guards marks_
    std::deque<Mark> marks_;
};

}  // namespace player
