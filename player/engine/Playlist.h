// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include <QString>

namespace player {

/// Indices and counts of a playlist are 16 bits wide.
constexpr int kMaxEntries = 32767;

/// Names an entry for as long as the program runs, wherever edits move it. 0 names none.
using EntryId = std::uint32_t;

/// One file of a playlist. A plain value.
struct Entry {
    EntryId id = 0;
    QString path;                  ///< absolute and native, or a URL as the list gave it
    QString title;                 ///< may be empty
    std::int64_t durationMs = -1;  ///< -1 = unknown
};

/// The ordered entries of one player. The owning thread edits; any thread may read: each call holds
/// a lock for the length of a look-up.
class Playlist {
  public:
    int count() const;
    std::optional<Entry> at(int index) const;
    std::vector<Entry> entries() const;
    /// -1 where the entry is gone.
    int indexOf(EntryId id) const;

    /// Inserts in front of index, 0 … count(); gives each entry its id. False, and no change, where
    /// the list would grow past kMaxEntries.
    bool insert(int index, std::vector<Entry>& entries);
    /// All entries give way to new ones, of which those of an old path keep the old entry's id.
    /// False, and no change, where they are too many.
    bool replace(std::vector<Entry>& entries);
    void remove(int index);
    void move(int from, int to);
    /// False where the entry is gone or nothing differs.
    bool setInfo(EntryId id, const QString& title, std::int64_t durationMs);
    bool setDuration(EntryId id, std::int64_t durationMs);

    /// The entry after (+1) or before (-1) an entry; for a removed one, the entry that took its
    /// place or the one before that.
    std::optional<Entry> neighbour(EntryId id, int direction) const;

  private:
    const std::unordered_map<EntryId, int>& places() const;
    EntryId follow(EntryId id) const;
    Entry* find(EntryId id);

    mutable std::mutex mutex_;  // guards everything below
    std::vector<Entry> entries_;
    mutable std::unordered_map<EntryId, int> places_;  // made anew when first asked after an edit
    mutable bool placesValid_ = true;
    std::unordered_map<EntryId, EntryId> successors_;  // of removed entries; 0 = the end
    EntryId nextId_ = 1;
};

}  // namespace player
