// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/PlaylistCommands.h"

#include "player/engine/PlayerEngine.h"
#include "widgets/CommonDialog.h"
#include "widgets/ListView.h"

using namespace Qt::Literals::StringLiterals;

namespace playlist {
namespace {

std::int16_t entryOf(int row) {
    return static_cast<std::int16_t>(row - 1);
}

QString titleOf(const player::PlayerEngine& engine, std::int16_t player, std::int16_t entry) {
    const QString title = engine.PlaylistGetItemInfo(player, entry, player::ItemInfoTitle);
    return title.isEmpty() ? engine.PlaylistGetItemInfo(player, entry, player::ItemInfoName)
                           : title;
}

}  // namespace

PlaylistCommands::PlaylistCommands(player::PlayerEngine& engine, widgets::CommonDialog& dialog)
    : engine_(engine), dialog_(dialog) {}

void PlaylistCommands::FillPlayListView(std::int16_t player, widgets::ListView& view) {
    const std::int16_t count = engine_.PlaylistGetCount(player);
    std::vector<QStringList> rows;
    rows.reserve(static_cast<std::size_t>(count));
    for (std::int16_t i = 0; i < count; ++i) {
        rows.push_back({QString::number(i + 1),
                        engine_.PlaylistGetItemInfo(player, i, player::ItemInfoDuration),
                        titleOf(engine_, player, i)});
    }
    view.setRows(std::move(rows));
    PreferShownRows(player, view);
}

void PlaylistCommands::updateRow(std::int16_t player, widgets::ListView& view, int row) {
    if (row < 1 || row > view.rowCount()) return;
    const std::int16_t entry = entryOf(row);
    view.setSubItem(row, 1, engine_.PlaylistGetItemInfo(player, entry, player::ItemInfoDuration));
    view.setSubItem(row, 2, titleOf(engine_, player, entry));
}

void PlaylistCommands::PreferShownRows(std::int16_t player, const widgets::ListView& view) {
    const auto [first, last] = view.shownRows();
    if (first > 0) engine_.PlaylistPrefer(player, entryOf(first), entryOf(last));
}

void PlaylistCommands::AddFileToPlaylist(std::int16_t player, widgets::ListView& view) {
    dialog_.FileName.clear();
    dialog_.FilterIndex = 0;
    dialog_.Filter =
        u"All Supported Files(*.mp3;*.mp2;*.wav;*.ogg;*.wma)|*.mp3;*.mp2;*.wav;*.ogg;*.wma"
        "|MP3 and MP2 sounds (*.mp3;*.mp2)|*.mp3;*.mp2|WAV sounds (*.wav)|*.wav"
        "|OGG Vorbis sounds (*.ogg)|*.ogg|Windows Media sounds (*.wma)|*.wma"
        "|All files (*.*)|*.*"_s;
    dialog_.ShowOpen();
    if (dialog_.FileName.isEmpty()) return view.setFocus();
    const std::int16_t position =
        view.rowCount() > 0 ? entryOf(view.currentRow()) : std::int16_t(0);
    engine_.PlaylistInsertFile(player, dialog_.FileName, position);
    FillPlayListView(player, view);
    showRow(view, position + 1);
}

void PlaylistCommands::RemoveSelectedEntry(std::int16_t player, widgets::ListView& view) {
    if (view.rowCount() == 0) return;
    engine_.PlaylistRemoveItem(player, entryOf(view.currentRow()));
    FillPlayListView(player, view);
    view.setFocus();
}

void PlaylistCommands::MoveSelectedEntry(std::int16_t player, widgets::ListView& view, bool up) {
    if (view.rowCount() == 0) return;
    const int from = view.currentRow();
    if (from == (up ? 1 : view.rowCount())) return view.setFocus();
    const int to = up ? from - 1 : from + 1;
    engine_.PlaylistMoveItem(player, entryOf(from), entryOf(to));
    FillPlayListView(player, view);
    showRow(view, to);
}

// From the end, and with one refill: a list of tens of thousands is gone at once.
void PlaylistCommands::ClearList(std::int16_t player, widgets::ListView& view) {
    for (int row = view.rowCount(); row > 0; --row) {
        engine_.PlaylistRemoveItem(player, entryOf(row));
    }
    FillPlayListView(player, view);
    view.setFocus();
}

bool PlaylistCommands::InsertFiles(std::int16_t player, widgets::ListView& view,
                                   const QStringList& files, int row) {
    if (engine_.PlaylistInsertFiles(player, files, entryOf(row)) != 0) return false;
    FillPlayListView(player, view);
    showRow(view, row);
    return true;
}

void PlaylistCommands::showRow(widgets::ListView& view, int row) {
    view.selectRow(row);
    view.ensureVisible(row);
    view.setFocus();
}

}  // namespace playlist
