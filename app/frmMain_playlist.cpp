// SPDX-License-Identifier: GPL-3.0-or-later
// The playlist's commands: add, remove, move, clear, select, totals, files.
#include <algorithm>
#include <limits>

#include <QTimer>

#include "app/Skin.h"
#include "app/frmMain.h"
#include "lists/Names.h"
#include "platform/ResumeNext.h"
#include "playlist/DiskQueue.h"
#include "playlist/DroppedFiles.h"
#include "playlist/PlaylistCommands.h"
#include "playlist/PlaylistFiles.h"
#include "playlist/Totals.h"
#include "ui_frmMain.h"
#include "widgets/Dispatch.h"
#include "widgets/MsgBox.h"

using namespace Qt::Literals::StringLiterals;

namespace app {
namespace {

constexpr int behindTheLast = std::numeric_limits<int>::max();  // row
const QString newListCaption = u"Playlist loaded: New list not yet saved."_s;

std::vector<QString> durationsOf(const widgets::ListView& list) {
    std::vector<QString> durations;
    durations.reserve(static_cast<std::size_t>(list.rowCount()));
    for (int row = 1; row <= list.rowCount(); ++row) durations.push_back(list.subItem(row, 1));
    return durations;
}

}  // namespace

void frmMain::CommandAddSong1_Click() {
    if (ui_->ListView1->rowCount() == 0) ui_->Label7->setText(newListCaption);
    list_->AddFileToPlaylist(0, *ui_->ListView1);
}

void frmMain::CommandRemove1_Click() {
    list_->RemoveSelectedEntry(0, *ui_->ListView1);
}

void frmMain::CommandMoveUp1_Click() {
    list_->MoveSelectedEntry(0, *ui_->ListView1, true);
}

void frmMain::CommandMoveDown1_Click() {
    list_->MoveSelectedEntry(0, *ui_->ListView1, false);
}

void frmMain::Button2_Click() {
    platform::resumeNext([this] { list_->ClearList(0, *ui_->ListView1); });
    ui_->Label7->clear();
}

void frmMain::mnuSelected_All_Click() {
    ui_->ListView1->setAllSelected(true);
}

void frmMain::mnuDeselectAll_Click() {
    ui_->ListView1->setAllSelected(false);
}

void frmMain::CommandSave1_Click() {
    files_->SavePlaylistCommand(0);
}

void frmMain::CommandLoad1_Click() {
    files_->LoadPlaylistCommand(0, *ui_->ListView1);
}

void frmMain::Timer2_Timer() {
    platform::resumeNext([this] {
        const playlist::Totals totals = playlist::totals(durationsOf(*ui_->ListView1));
        setTextColour(*ui_->Label2, totals.overCdLimit ? u"alarm"_s : u"text"_s);
        TotalMinutes = totals.totalMinutes;
        ui_->Label2->setText(totals.durationText);
        ui_->Label4->setText(totals.countText);
    });
}

void frmMain::PlayerEngine1_ItemInfoChanged(int player, int index) {
    if (player == 0) list_->updateRow(0, *ui_->ListView1, index + 1);
}

void frmMain::ListView1_Scrolled() {
    list_->PreferShownRows(0, *ui_->ListView1);
}

// The program that the files come from waits until the drop has returned: boxes come after that.
void frmMain::ListView1_FilesDropped(const QList<QUrl>& urls, int row) {
    if (!ui_->CommandAddSong1->isEnabled()) return;
    QStringList paths;
    for (const QUrl& url : urls)
        if (url.isLocalFile()) paths.append(lists::localPath(url));
    QTimer::singleShot(0, this, widgets::guarded([this, paths, row] {
                           if (ui_->CommandAddSong1->isEnabled()) insertPaths(paths, row);
                       }));
}

void frmMain::openPaths(const QStringList& paths, std::function<void()> then) {
    insertPaths(paths, behindTheLast, std::move(then));
}

// The row of a drop is one of the list as it is now; behind the last one is there later too.
void frmMain::insertPaths(const QStringList& paths, int row, std::function<void()> then) {
    if (row > ui_->ListView1->rowCount()) row = behindTheLast;
    disk_->add([=, this](const std::stop_token& stop) {
        playlist::DroppedFiles dropped = playlist::sortOut(paths, stop);
        playlist::ReadList list;
        if (!dropped.list.isEmpty()) list = playlist::readList(dropped.list);
        return [=, this] {
            takeDropped(list, dropped, row);
            if (then) then();
        };
    });
}

void frmMain::takeDropped(const playlist::ReadList& list, playlist::DroppedFiles dropped, int row) {
    widgets::ListView& view = *ui_->ListView1;
    if (!dropped.list.isEmpty()) {
        files_->Show(0, view, list);
        row = behindTheLast;
    } else if (view.rowCount() == 0 && !dropped.files.isEmpty()) {
        ui_->Label7->setText(newListCaption);
    }
    row = std::min(row, view.rowCount() + 1);
    const bool fits = dropped.files.isEmpty() || list_->InsertFiles(0, view, dropped.files, row);
    if (!fits) dropped.refused += u"A playlist holds no more than 32767 files: none were added."_s;
    if (!dropped.refused.isEmpty()) widgets::msgBox(playlist::refusedText(dropped.refused));
}

}  // namespace app
