// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/PlaylistFiles.h"

#include <exception>

#include <QLabel>

#include "player/engine/PlayerEngine.h"
#include "playlist/DiskQueue.h"
#include "playlist/PlaylistCommands.h"
#include "widgets/CommonDialog.h"
#include "widgets/ListView.h"
#include "widgets/MsgBox.h"

using namespace Qt::Literals::StringLiterals;

namespace playlist {

ReadList readList(const QString& path) {
    try {
        return {path, lists::readListFile(path)};
    } catch (const std::exception&) {
        return {path, std::nullopt};
    }
}

PlaylistFiles::PlaylistFiles(player::PlayerEngine& engine, PlaylistCommands& commands,
                             widgets::CommonDialog& dialog, DiskQueue& disk, QLabel& caption)
    : engine_(engine), commands_(commands), dialog_(dialog), disk_(disk), caption_(caption) {}

void PlaylistFiles::SavePlaylistCommand(std::int16_t player) {
    dialog_.FileName.clear();
    dialog_.Filter = u"M3U PlayList (*.m3u)|*.m3u|PLS PlayList (*.pls)|*.pls"_s;
    dialog_.FilterIndex = 0;
    dialog_.ShowSave();
    const QString path = dialog_.FileName;
    if (path.isEmpty()) return;
    caption_.setText(u"Playlist loaded: "_s + path);
    const std::int32_t format = dialog_.FilterIndex - 1;
    if (engine_.PlaylistSave(player, path, format) != 0) {
        widgets::msgBox(u"Error saving playlist"_s);
    }
}

void PlaylistFiles::LoadPlaylistCommand(std::int16_t player, widgets::ListView& view) {
    dialog_.FileName.clear();
    dialog_.Filter =
        u"Playlist formats (*.m3u;*.pls)|*.m3u;*.pls|M3U PlayList (*.m3u)|*.m3u"
        "|PLS PlayList (*.pls)|*.pls|All files (*.*)|*.*"_s;
    dialog_.FilterIndex = 0;
    dialog_.ShowOpen();
    if (!dialog_.FileName.isEmpty()) Load(player, view, dialog_.FileName);
}

void PlaylistFiles::ReloadPlaylist(std::int16_t player, widgets::ListView& view) {
    if (!caption_.text().isEmpty()) Load(player, view, caption_.text());
}

void PlaylistFiles::Load(std::int16_t player, widgets::ListView& view, const QString& path) {
    disk_.add([this, player, &view, path](const std::stop_token&) {
        return [this, player, &view, read = readList(path)] { Show(player, view, read); };
    });
}

void PlaylistFiles::LoadInSilence(std::int16_t player, widgets::ListView& view,
                                  const QString& path) {
    disk_.add([this, player, &view, path](const std::stop_token&) {
        return [this, player, &view, read = readList(path)] { fill(player, view, read); };
    });
}

void PlaylistFiles::Show(std::int16_t player, widgets::ListView& view, const ReadList& read) {
    if (fill(player, view, read))
        caption_.setText(read.path);
    else
        widgets::msgBox(u"Error loading playlist"_s);
}

bool PlaylistFiles::fill(std::int16_t player, widgets::ListView& view, const ReadList& read) {
    const bool filled = read.entries && engine_.PlaylistFill(player, *read.entries, 1) == 0;
    if (filled) commands_.FillPlayListView(player, view);
    return filled;
}

}  // namespace playlist
