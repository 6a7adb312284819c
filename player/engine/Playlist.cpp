// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/Playlist.h"

#include <algorithm>
#include <iterator>

#include <QMultiHash>
#include <QString>

namespace player {

int Playlist::count() const {
    const std::lock_guard lock(mutex_);
    return int(entries_.size());
}

std::optional<Entry> Playlist::at(int index) const {
    const std::lock_guard lock(mutex_);
    if (index < 0 || index >= int(entries_.size())) return std::nullopt;
    return entries_[std::size_t(index)];
}

std::vector<Entry> Playlist::entries() const {
    const std::lock_guard lock(mutex_);
    return entries_;
}

int Playlist::indexOf(EntryId id) const {
    const std::lock_guard lock(mutex_);
    const auto place = places().find(id);
    return place == places().end() ? -1 : place->second;
}

bool Playlist::insert(int index, std::vector<Entry>& entries) {
    const std::lock_guard lock(mutex_);
    if (entries_.size() + entries.size() > kMaxEntries) return false;
    for (Entry& entry : entries) entry.id = nextId_++;
    const int place = std::clamp(index, 0, int(entries_.size()));
    entries_.insert(entries_.begin() + place, entries.begin(), entries.end());
    placesValid_ = false;
    return true;
}

bool Playlist::replace(std::vector<Entry>& entries) {
    const std::lock_guard lock(mutex_);
    if (entries.size() > kMaxEntries) return false;
    QMultiHash<QString, EntryId> ids;
    for (auto old = entries_.rbegin(); old != entries_.rend(); ++old)
        ids.insert(old->path, old->id);
    for (Entry& entry : entries) {
        const auto known = ids.find(entry.path);  // the latest inserted of a path, the list's first
        entry.id = known == ids.end() ? nextId_++ : *known;
        if (known != ids.end()) ids.erase(known);
    }
    successors_.clear();
    entries_ = entries;
    placesValid_ = false;
    return true;
}

void Playlist::remove(int index) {
    const std::lock_guard lock(mutex_);
    if (index < 0 || index >= int(entries_.size())) return;
    const auto place = entries_.begin() + index;
    const auto next = std::next(place);
    successors_[place->id] = next == entries_.end() ? 0 : next->id;
    entries_.erase(place);
    placesValid_ = false;
}

void Playlist::move(int from, int to) {
    const std::lock_guard lock(mutex_);
    const int size = int(entries_.size());
    if (from < 0 || from >= size || to < 0 || to >= size) return;
    const auto begin = entries_.begin();
    if (from < to)
        std::rotate(begin + from, begin + from + 1, begin + to + 1);
    else
        std::rotate(begin + to, begin + from, begin + from + 1);
    placesValid_ = false;
}

bool Playlist::setInfo(EntryId id, const QString& title, std::int64_t durationMs) {
    const std::lock_guard lock(mutex_);
    Entry* entry = find(id);
    if (!entry || (entry->title == title && entry->durationMs == durationMs)) return false;
    entry->title = title;
    entry->durationMs = durationMs;
    return true;
}

bool Playlist::setDuration(EntryId id, std::int64_t durationMs) {
    const std::lock_guard lock(mutex_);
    Entry* entry = find(id);
    if (!entry || entry->durationMs == durationMs) return false;
    entry->durationMs = durationMs;
    return true;
}

std::optional<Entry> Playlist::neighbour(EntryId id, int direction) const {
    const std::lock_guard lock(mutex_);
    const bool removed = successors_.contains(id);
    const auto place = places().find(follow(id));
    // A removed last entry stands behind the list; an unknown one has no neighbours.
    if (place == places().end() && !removed) return std::nullopt;
    int index = place == places().end() ? int(entries_.size()) : place->second;
    if (direction < 0) --index;
    if (direction > 0 && !removed) ++index;
    if (index < 0 || index >= int(entries_.size())) return std::nullopt;
    return entries_[std::size_t(index)];
}

const std::unordered_map<EntryId, int>& Playlist::places() const {
    if (!placesValid_) {
        places_.clear();
        places_.reserve(entries_.size());
        for (std::size_t i = 0; i < entries_.size(); ++i) places_[entries_[i].id] = int(i);
        placesValid_ = true;
    }
    return places_;
}

EntryId Playlist::follow(EntryId id) const {
    for (auto gone = successors_.find(id); gone != successors_.end(); gone = successors_.find(id))
        id = gone->second;
    return id;
}

Entry* Playlist::find(EntryId id) {
    const auto place = places().find(id);
    return place == places().end() ? nullptr : &entries_[std::size_t(place->second)];
}

}  // namespace player
