// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/Transport.h"

#include <algorithm>
#include <cmath>

#include "player/engine/PlayerEngine.h"

namespace player {

Transport::Transport(int player, PlaylistStore& store, Voice& voice, QObject* parent)
    : QObject(parent), player_(player), store_(store), voice_(voice) {}

void Transport::loadSound(const QString& path) {
    setStatus(StatusStopped);
    open(0, path, 1);
}

void Transport::playSound() {
    if (!loaded_ || status_ == StatusPlaying) return;
    if (opening_ == 0) open(id_, path_, 1);
    setStatus(StatusPlaying);
    const unsigned opening = opening_;
    if (start_ != 0)  // it was opened before
        QMetaObject::invokeMethod(
            this,
            [this, opening] {
                if (opening == opening_) Q_EMIT started();
            },
            Qt::QueuedConnection);
}

void Transport::playItem(int index) {
    const auto entry = store_.list(player_).at(index);
    if (!entry) return;
    open(entry->id, entry->path, 1);
    setStatus(StatusPlaying);
}

void Transport::step(int direction) {
    if (!loaded_ || id_ == 0) return;
    const EntryId from = stepping_ != 0 ? steppingTo_ : id_;
    const auto entry = store_.list(player_).neighbour(from, direction);
    if (!entry) return;
    if (status_ == StatusStopped) return cue(*entry);
    if (!opened_) return open(entry->id, entry->path, direction);
    stepping_ = voice_.step(entry->id, entry->path, direction);
    steppingTo_ = entry->id;
}

/// The entry that a stopped player is to play next.
void Transport::cue(const Entry& entry) {
    id_ = entry.id;
    path_ = entry.path;
    stoppedAt_ = {};
    const int index = nowPlaying();
    QMetaObject::invokeMethod(
        this, [this, index] { Q_EMIT nowPlayingChanged(index); }, Qt::QueuedConnection);
}

void Transport::stop() {
    if (opening_ == 0) return;
    stoppedAt_ = {0, place().length, place().rate};
    opening_ = 0;
    stepping_ = 0;
    start_ = 0;
    seeking_.reset();
    setStatus(StatusStopped);
    voice_.close();
    followList();
}

void Transport::pause() {
    if (status_ == StatusPlaying) setStatus(StatusPaused);
}

void Transport::resume() {
    if (status_ != StatusPaused) return;
    setStatus(StatusPlaying);
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT started(); }, Qt::QueuedConnection);
}

bool Transport::fade(int from, int to, std::int64_t milliseconds) {
    if (!loaded_) return false;
    if (opening_ == 0) open(id_, path_, 1);
    voice_.fade(from, to, milliseconds);
    return true;
}

void Transport::open(EntryId id, const QString& path, int direction) {
    loaded_ = true;
    id_ = id;
    path_ = path;
    opened_ = false;
    start_ = 0;
    stepping_ = 0;
    seeking_.reset();
    stoppedAt_ = {};
    opening_ = voice_.open(id, path, direction);
}

void Transport::followList() {
    if (opening_ != 0 || !loaded_ || id_ == 0 || nowPlaying() >= 0) return;
    loaded_ = false;
    id_ = 0;
    path_.clear();
    stoppedAt_ = {};
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT unloaded(); }, Qt::QueuedConnection);
}

void Transport::forget(const QString& path) {
    if (path_ == path && opening_ == 0) stoppedAt_ = {};
}

void Transport::setStatus(int status) {
    if (status_ == status) return;
    status_ = status;
    voice_.channel().setRunning(status == StatusPlaying);
    if (status == StatusPlaying) voice_.wake();
    Q_EMIT statusChanged();
}

int Transport::nowPlaying() const {
    return loaded_ && id_ != 0 ? store_.list(player_).indexOf(id_) : -1;
}

std::optional<Mark> Transport::heardMark(std::int64_t& heard) const {
    heard = voice_.channel().heard();
    auto mark = voice_.markAt(heard);
    if (mark && mark->opening != opening_) mark.reset();
    return mark;
}

Transport::Place Transport::place() const {
    if (opening_ == 0) return stoppedAt_;
    std::int64_t heard = 0;
    const auto mark = heardMark(heard);
    if (!mark || mark->sourceRate == 0) return {};
    const std::int64_t past = (heard - mark->ringFrame) * mark->sourceRate / mark->ringRate;
    const std::int64_t frame = mark->sourceFrame + past;
    return {mark->length < 0 ? frame : std::min(frame, mark->length), mark->length,
            mark->sourceRate};
}

/// The seek that is not heard yet.
std::optional<SeekTarget> Transport::pendingSeek() const {
    std::int64_t heard = 0;
    const auto mark = heardMark(heard);
    return mark && mark->seek >= seekNumber_ ? std::nullopt : seeking_;
}

std::int64_t Transport::positionMs() const {
    if (!loaded_) return -1;
    if (const auto pending = pendingSeek()) {
        if (!pending->percent) return pending->milliseconds;
        return std::llround(double(std::max<std::int64_t>(lengthMs(), 0)) * *pending->percent /
                            100);
    }
    const Place at = place();
    return at.rate == 0 ? 0 : at.frame * 1000 / at.rate;
}

int Transport::positionPercent() const {
    if (!loaded_) return -1;
    if (const auto pending = pendingSeek(); pending && pending->percent)
        return int(std::lround(*pending->percent));
    const std::int64_t length = lengthMs();
    if (length <= 0) return 0;
    const std::int64_t percent = std::llround(100.0 * double(positionMs()) / double(length));
    return int(std::clamp<std::int64_t>(percent, 0, 100));
}

std::int64_t Transport::lengthMs() const {
    if (!loaded_) return -1;
    const Place at = place();
    if (at.rate != 0 && at.length >= 0) return at.length * 1000 / at.rate;
    const auto entry = store_.list(player_).at(nowPlaying());
    return entry ? entry->durationMs : -1;
}

void Transport::seekMs(std::int64_t milliseconds) {
    seek({std::max<std::int64_t>(milliseconds, 0), {}});
}

void Transport::seekPercent(double percent) {
    seek({0, std::clamp(percent, 0.0, 100.0)});
}

void Transport::seekBy(std::int64_t milliseconds) {
    if (loaded_) seekMs(positionMs() + milliseconds);
}

void Transport::seek(const SeekTarget& target) {
    if (opening_ == 0) return;
    std::int64_t heard = 0;
    seeking_ = target;
    seekNumber_ = voice_.seek(heardMark(heard).value_or(Mark{}), target);
}

void Transport::poll() {
    for (const Voice::News& news : voice_.takeNews()) take(news);
    followEar();
}

void Transport::take(const Voice::News& news) {
    if (news.kind == Voice::News::Length) {
        if (news.mark.id != 0 && news.mark.sourceRate > 0)
            store_.correctDuration(player_, news.mark.id,
                                   news.mark.length * 1000 / news.mark.sourceRate);
    } else if (news.opening == stepping_ && stepping_ != 0) {
        takeStep(news);
    } else if (news.opening == opening_ && opening_ != 0) {
        if (news.kind == Voice::News::Opened)
            takeOpened(news.mark);
        else
            finish();
    }
}

void Transport::takeStep(const Voice::News& news) {
    stepping_ = 0;
    if (news.kind != Voice::News::Opened) return;
    opening_ = news.opening;
    start_ = 0;
    takeOpened(news.mark);
}

void Transport::takeOpened(const Mark& mark) {
    opened_ = true;
    if (status_ == StatusPlaying) {
        if (mark.id != 0) id_ = mark.id;  // others may have been skipped
        Q_EMIT started();
    } else {
        becomeCurrent(mark);
    }
}

/// Announces the entry that is heard, and the end of the last one.
void Transport::followEar() {
    if (opening_ == 0) return;
    std::int64_t heard = 0;
    const auto mark = heardMark(heard);
    if (!mark) return;
    if (seeking_ && mark->seek >= seekNumber_) seeking_.reset();
    if (mark->end) {
        finish();
    } else if (mark->start != start_ && heard > mark->ringFrame) {
        becomeCurrent(*mark);
    }
}

void Transport::becomeCurrent(const Mark& mark) {
    start_ = mark.start;
    if (mark.id == 0) return;
    id_ = mark.id;
    if (const auto entry = store_.list(player_).at(nowPlaying())) path_ = entry->path;
    if (nowPlaying() >= 0) Q_EMIT nowPlayingChanged(nowPlaying());
}

/// Nothing is loaded any more.
void Transport::finish() {
    const bool listed = id_ != 0;
    const int index = nowPlaying();
    stop();
    loaded_ = false;
    if (listed) Q_EMIT ended(index);
}

}  // namespace player

#include "moc_Transport.cpp"  // NOLINT(bugprone-suspicious-include)
