// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/TrackFeed.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace player {
namespace {

constexpr std::size_t kChunk = 2048;
constexpr int kPrefillMs = 400;       // in the ring before a new place is mixed: a long block
constexpr int kAheadSeconds = 2;      // in the ring while it plays
constexpr int kOpenAheadSeconds = 6;  // before the end of the entry
constexpr std::size_t kMarks = 256;

}  // namespace

TrackFeed::TrackFeed(VoiceChannel& channel, const Playlist& playlist, OpenSound openSound,
                     Host& host)
    : channel_(channel), playlist_(playlist), openSound_(std::move(openSound)), host_(host) {}

std::unique_ptr<SoundSource> TrackFeed::tryOpen(const QString& path) const {
    try {
        auto source = openSound_(path);
        // Only what yields a frame can be played; a damaged file may open and yield none.
        std::vector<float> frame(std::size_t(source->channels()));
        if (source->rate() <= 0 || source->read(frame.data(), 1) == 0) return nullptr;
        source->seek(0);
        return source;
    } catch (const std::exception&) {
        return nullptr;
    }
}

std::optional<TrackFeed::Track> TrackFeed::openFrom(Track track, int direction, bool feeding) {
    while (!host_.isSuperseded()) {
        while (feeding && hungry()) feed();
        track.source = tryOpen(track.path);
        if (track.source) return track;
        const auto neighbour =
            track.id == 0 ? std::nullopt : playlist_.neighbour(track.id, direction);
        if (!neighbour) return std::nullopt;
        track = {neighbour->id, neighbour->path, nullptr};
    }
    return std::nullopt;
}

bool TrackFeed::open(const Opening& opening) {
    if (!opening.step) close();
    auto track = openFrom({opening.id, opening.path, nullptr}, opening.direction, opening.step);
    if (opening.step) {
        if (!track) return false;
        clear();
    }
    opening_ = opening.number;
    const auto wish = host_.takeSeek();
    if (wish) seek_ = wish->number;
    if (track) {
        const bool asAsked = track->id == opening.id;
        adopt(std::move(*track), ++starts_);
        ringRate_ = host_.joinRate(source_->rate());
        begin(wish && asAsked ? frameOf(wish->target) : 0);
    }
    if (!opening.step) channel_.openingDone(opening.number);
    return bool(track);
}

void TrackFeed::seek(const Mark& heard, const Seek& seek) {
    seek_ = seek.number;
    if (released_) {
        released_ = frameOf(seek.target);
        begin(*released_);
        return;
    }
    // The feed may be ahead of the ear: then back to what is heard.
    const bool ahead = heard.opening == opening_ && (heard.start != start_ || raises_);
    if (isOpen() && (!ahead || backTo(heard)))
        begin(frameOf(seek.target));
    else
        acknowledgeSeek();
}

bool TrackFeed::backTo(const Mark& heard) {
    const auto entry = playlist_.at(playlist_.indexOf(heard.id));
    auto source = entry ? tryOpen(entry->path) : nullptr;
    if (!source) return false;
    adopt({heard.id, entry->path, std::move(source)}, heard.start);
    length_ = heard.length;
    return true;
}

void TrackFeed::adopt(Track track, unsigned start) {
    source_ = std::move(track.source);
    path_ = track.path;
    id_ = track.id;
    start_ = start;
    sourceRate_ = source_->rate();
    length_ = -1;
    triedNext_ = 0;
}

/// A seek that cannot be obeyed counts as done.
void TrackFeed::acknowledgeSeek() {
    const std::lock_guard lock(mutex_);
    for (Mark& mark : marks_) mark.seek = seek_;
}

void TrackFeed::fade(double from, double to, std::int64_t milliseconds) {
    if (!source_ || ringRate_ == 0) return;
    const auto& ring = channel_.ring();
    channel_.setFade(
        {std::max(ring.read(), ring.target()), milliseconds * ringRate_ / 1000, from, to});
}

void TrackFeed::close() {
    clear();
    output_.clear();
    outputDone_ = 0;
    channel_.publish(channel_.ring().written(), ringRate_, true);
}

/// Nothing is open any more; what the ring holds still sounds.
void TrackFeed::clear() {
    host_.leaveRate();
    source_.reset();
    next_ = {};
    raises_.reset();
    released_.reset();
    path_.clear();
    atEnd_ = false;
    length_ = -1;
    channel_.clearFade();
}

std::int64_t TrackFeed::frameOf(const SeekTarget& target) {
    if (!target.percent && target.milliseconds <= 0) return 0;
    learnLength();
    const std::int64_t length = std::max<std::int64_t>(length_, 0);
    const std::int64_t frame = target.percent ? std::llround(double(length) * *target.percent / 100)
                                              : (target.milliseconds * sourceRate_ + 500) / 1000;
    return std::clamp<std::int64_t>(frame, 0, length);
}

/// What the source holds from a place on becomes what is mixed next.
void TrackFeed::begin(std::int64_t frame) {
    atEnd_ = false;
    raises_.reset();
    output_.clear();
    outputDone_ = 0;
    const std::int64_t first = channel_.ring().written();
    addMark(first, frame, false);
    if (source_) {
        convertFrom(first);
        if (seekSource(frame)) prefill();
    }
    channel_.publish(first, ringRate_, frame == 0);
}

bool TrackFeed::seekSource(std::int64_t frame) {
    try {
        source_->seek(frame);
        return true;
    } catch (const std::exception&) {
        advance();
        return false;
    }
}

/// Only as much as the ring has room for: it may be full of what is dropped next.
void TrackFeed::prefill() {
    const std::int64_t goal =
        channel_.ring().written() + std::int64_t(ringRate_) * kPrefillMs / 1000;
    while (canFeed() && channel_.ring().written() < goal && channel_.ring().space() > 0) feed();
}

bool TrackFeed::hungry() const {
    if (raises_ && outputDone_ >= output_.size()) return channel_.level() <= 0;
    if (!isOpen() || atEnd_ || channel_.ring().space() == 0) return false;
    const std::int64_t most =
        std::min<std::int64_t>(channel_.ring().capacity() / 2, kAheadSeconds * ringRate_);
    return channel_.level() < most;
}

void TrackFeed::feed() {
    if (outputDone_ < 2 * (output_.size() / 2)) {
        drain();
    } else if (raises_) {
        if (channel_.level() <= 0) raise();
    } else if (atEnd_) {
        if (id_ != 0 && playlist_.neighbour(id_, 1)) advance();  // one was added behind the last
    } else if (source_) {
        readOn();
        prepareNext();
    }
}

void TrackFeed::readOn() {
    std::size_t frames = 0;
    input_.resize(kChunk * std::size_t(source_->channels()));
    try {
        frames = source_->read(input_.data(), kChunk);
    } catch (const std::exception&) {
        frames = 0;  // nothing more can be read: the next entry's turn
    }
    if (frames == 0) {
        learnLength();
        advance();
        return;
    }
    converter_->push(input_.data(), frames, output_);
    drain();
}

/// Moves converted frames into the ring, as many as there is room for.
void TrackFeed::drain() {
    const std::size_t frames = output_.size() / 2 - outputDone_ / 2;
    outputDone_ += 2 * channel_.ring().write(output_.data() + outputDone_, frames);
    if (outputDone_ < output_.size()) return;
    output_.clear();
    outputDone_ = 0;
}

/// The number that the next converted frame will have in the ring.
std::int64_t TrackFeed::produced() const {
    return channel_.ring().written() + std::int64_t((output_.size() - outputDone_) / 2);
}

void TrackFeed::convertFrom(std::int64_t ringFrame) {
    converter_ = std::make_unique<StereoConverter>(source_->rate(), source_->channels(), ringRate_);
    converterStart_ = ringFrame;
}

/// The next entry follows the last frame; without one, the end does.
void TrackFeed::advance() {
    auto next = takeNext();
    if (!next && atEnd_) return;
    if (next && host_.raisesRate(next->source->rate())) {
        if (converter_) converter_->finish(output_);
        converter_.reset();
        source_.reset();
        raises_ = std::move(next);
        drain();
        return;
    }
    const bool joined =
        next && converter_ &&
        converter_->takes(next->source->rate(), next->source->channels(), ringRate_);
    if (converter_ && !joined) converter_->finish(output_);
    const std::int64_t first = joined ? converterStart_ + converter_->place() : produced();
    atEnd_ = !next;
    if (next) {
        adopt(std::move(*next), ++starts_);
        if (!joined) convertFrom(first);
        addMark(first, 0, false);
    } else {
        converter_.reset();
        addMark(first, length_, true);
    }
    drain();
}

/// The ring has been played: what comes next begins in it at a rate of its own.
void TrackFeed::raise() {
    auto next = std::exchange(raises_, std::nullopt);
    if (!next->source) next = openFrom(std::move(*next), 1, false);
    if (!next) {
        atEnd_ = true;
        return addMark(produced(), length_, true);
    }
    adopt(std::move(*next), ++starts_);
    ringRate_ = host_.joinRate(sourceRate_);
    begin(0);
}

std::optional<TrackFeed::Track> TrackFeed::takeNext() {
    const auto neighbour = id_ == 0 ? std::nullopt : playlist_.neighbour(id_, 1);
    if (!neighbour) return std::nullopt;
    if (next_.source && next_.id == neighbour->id) return std::exchange(next_, {});
    next_ = {};
    return openFrom({neighbour->id, neighbour->path, nullptr}, 1, false);
}

void TrackFeed::prepareNext() {
    if (!source_ || id_ == 0 || length_ < 0) return;
    if (length_ - source_->position() > std::int64_t(kOpenAheadSeconds) * source_->rate()) return;
    const auto neighbour = playlist_.neighbour(id_, 1);
    if (!neighbour || neighbour->id == triedNext_ || neighbour->path == held_) return;
    triedNext_ = neighbour->id;
    next_ = {neighbour->id, neighbour->path, tryOpen(neighbour->path)};
}

bool TrackFeed::learnLength() {
    if (!source_ || length_ >= 0) return false;
    try {
        length_ = source_->frames();
    } catch (const std::exception&) {
        length_ = source_->position();
    }
    const std::lock_guard lock(mutex_);
    for (Mark& mark : marks_)
        if (mark.start == start_) mark.length = length_;
    return true;
}

void TrackFeed::release(const QString& path) {
    held_ = path;
    if (raises_ && raises_->path == path) raises_->source.reset();
    if (next_.path == path) {
        next_ = {};
        triedNext_ = 0;
    }
    if (!source_ || path_ != path) return;
    released_ = source_->position();
    source_.reset();
}

void TrackFeed::acquire(const QString& path) {
    if (held_ == path) held_.clear();
    if (!released_ || path_ != path) return;
    const std::int64_t frame = *std::exchange(released_, std::nullopt);
    source_ = tryOpen(path);
    length_ = -1;
    if (!source_) {
        advance();
    } else if (converter_ && converter_->takes(source_->rate(), source_->channels(), ringRate_)) {
        seekSource(frame);  // the ring goes on with the very next frame
    } else if (!atEnd_) {
        begin(frame);
    }
}

void TrackFeed::addMark(std::int64_t ringFrame, std::int64_t sourceFrame, bool end) {
    const std::lock_guard lock(mutex_);
    // What was planned from this frame on gives way.
    while (!marks_.empty() && marks_.back().ringFrame >= ringFrame) marks_.pop_back();
    marks_.push_back({ringFrame, opening_, start_, seek_, id_, sourceFrame, length_, sourceRate_,
                      ringRate_, end});
    if (marks_.size() > kMarks) marks_.pop_front();
}

Mark TrackFeed::latest() const {
    const std::lock_guard lock(mutex_);
    return marks_.empty() ? Mark{} : marks_.back();
}

std::optional<Mark> TrackFeed::markAt(std::int64_t ringFrame) const {
    const std::lock_guard lock(mutex_);
    for (auto mark = marks_.rbegin(); mark != marks_.rend(); ++mark)
        if (mark->ringFrame <= ringFrame) return *mark;
    return std::nullopt;
}

}  // namespace player
