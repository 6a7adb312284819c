// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/PlaylistStore.h"

#include <chrono>

#include <QElapsedTimer>

#include "lists/ListReader.h"
#include "lists/ListWriter.h"
#include "platform/AbsolutePath.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "player/engine/PlayerEngine.h"

namespace player {
namespace {

using namespace std::chrono_literals;

constexpr auto kWaitForInfo = 150ms;
constexpr int kPortionMs = 4;  // of the window thread's time, then other events get their turn
constexpr int kPauseMs = 8;
constexpr std::size_t kPortion = 64;

static_assert(lists::maxEntries == kMaxEntries);

platform::Error tooMany() {
    return platform::Error("A playlist holds at most " + std::to_string(kMaxEntries) + " entries.");
}

QString entryPath(const QString& path) {
    if (lists::isUrl(path) || lists::isWindowsPath(path)) return path;
    return platform::absolutePath(path);
}

}  // namespace

QString formatDuration(std::int64_t milliseconds) {
    if (milliseconds < 0) return {};
    const std::int64_t seconds = (milliseconds + 500) / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

PlaylistStore::PlaylistStore(QObject* parent)
    : QObject(parent), resultsCame_([this] { deliver(); }), reader_(std::ref(resultsCame_)) {
    delivery_.setSingleShot(true);
    connect(&delivery_, &QTimer::timeout, this, &PlaylistStore::deliver);
}

void PlaylistStore::fill(int player, const std::vector<lists::ListedEntry>& listed, bool replace) {
    std::vector<Entry> entries;
    entries.reserve(listed.size());
    for (const lists::ListedEntry& entry : listed)
        entries.push_back({0, entry.path, entry.title, entry.durationMs});
    Playlist& target = list(player);
    if (replace) reader_.drop(player);
    if (!(replace ? target.replace(entries) : target.insert(target.count(), entries)))
        throw tooMany();
    readInfo(player, entries, false);
}

void PlaylistStore::save(int player, const QString& path, int format) const {
    std::vector<lists::ListedEntry> entries;
    for (const Entry& entry : list(player).entries())
        entries.push_back({entry.path, entry.title, entry.durationMs});
    lists::replaceListFile(
        path, format == FormatPls ? lists::writePls(entries) : lists::writeM3u(entries));
}

void PlaylistStore::insert(int player, const QStringList& paths, int index) {
    std::vector<Entry> entries;
    for (const QString& path : paths) entries.push_back({0, entryPath(path), {}, -1});
    if (!list(player).insert(index, entries)) throw tooMany();
    readInfo(player, entries, true);
}

QString PlaylistStore::info(int player, int index, int kind) const {
    const auto entry = list(player).at(index);
    if (!entry) return {};
    switch (kind) {
        case ItemInfoPath:
            return entry->path;
        case ItemInfoName:
            return lists::nameOf(entry->path);
        case ItemInfoTitle:
            return entry->title;
        case ItemInfoDuration:
            return formatDuration(entry->durationMs);
        default:
            return {};
    }
}

void PlaylistStore::prefer(int player, int first, int last) {
    std::unordered_set<EntryId> ids;
    for (int index = first; index <= last; ++index)
        if (const auto entry = list(player).at(index)) ids.insert(entry->id);
    reader_.prefer(ids);
}

void PlaylistStore::readAgain(const QString& path) {
    std::vector<ItemInfoReader::Item> items;
    for (int player = 0; player < kPlayers; ++player)
        for (const Entry& entry : list(player).entries())
            if (entry.path == path) items.push_back({player, entry.id, entry.path});
    if (!items.empty()) reader_.request(items, true);
}

void PlaylistStore::readInfo(int player, const std::vector<Entry>& entries, bool first) {
    std::vector<ItemInfoReader::Item> items;
    for (const Entry& entry : entries)
        if (!lists::isUrl(entry.path)) items.push_back({player, entry.id, entry.path});
    if (items.empty()) return;
    reader_.wait(reader_.request(items, first), kWaitForInfo);
    // What came in time is in the list when the call returns: the caller shows it without an event.
    QElapsedTimer spent;
    spent.start();
    while (spent.elapsed() < kPortionMs) {
        const auto results = reader_.take(kPortion);
        if (results.empty()) return;
        for (const auto& result : results)
            if (apply(result) && result.player != player)
                QMetaObject::invokeMethod(
                    this, [this, result] { announce(result.player, result.id); },
                    Qt::QueuedConnection);
    }
    delivery_.start(0);
}

void PlaylistStore::deliver() {
    QElapsedTimer spent;
    spent.start();
    while (spent.elapsed() < kPortionMs) {
        const auto results = reader_.take(1);
        if (results.empty()) return;
        const auto& result = results.front();
        if (apply(result)) announce(result.player, result.id);
    }
    delivery_.start(kPauseMs);
}

void PlaylistStore::announce(int player, EntryId id) {
    const int index = list(player).indexOf(id);
    if (index >= 0) Q_EMIT infoChanged(player, index);
}

void PlaylistStore::correctDuration(int player, EntryId id, std::int64_t milliseconds) {
    if (list(player).setDuration(id, milliseconds)) announce(player, id);
}

bool PlaylistStore::apply(const ItemInfoReader::Result& result) {
    const auto& [player, id, info] = result;
    if (info.durationMs < 0 && info.title.empty()) return false;  // what the list said holds
    return list(player).setInfo(id, QString::fromStdString(info.title), info.durationMs);
}

}  // namespace player
