// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HandoffHost.h"

#include <QCoreApplication>

#include "handoff/forms/BrowseForFolder.h"
#include "player/engine/PlayerEngine.h"
#include "playlist/PlaylistCommands.h"
#include "playlist/PlaylistFiles.h"
#include "ui_frmMain.h"
#include "widgets/InputBox.h"
#include "widgets/MsgBox.h"

namespace app {

int HandoffHost::rowCount() const {
    return parts_.ui.ListView1->rowCount();
}

bool HandoffHost::rowSelected(int row) const {
    return parts_.ui.ListView1->isSelected(row);
}

QString HandoffHost::entryPath(int entry) const {
    return parts_.engine.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry),
                                             player::ItemInfoPath);
}

QString HandoffHost::entryName(int entry) const {
    return parts_.engine.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry),
                                             player::ItemInfoName);
}

void HandoffHost::clearRows() {
    parts_.ui.ListView1->clearRows();
}

void HandoffHost::setTitleCell(int row, const QString& text) {
    parts_.ui.ListView1->setSubItem(row, 2, text);
}

std::int16_t HandoffHost::totalMinutes() const {
    return parts_.totalMinutes;
}

QString HandoffHost::playlistCaption() const {
    return parts_.ui.Label7->text();
}

void HandoffHost::setPlaylistCaption(const QString& caption) {
    parts_.ui.Label7->setText(caption);
}

std::int32_t HandoffHost::savePlaylistAsM3u(std::int16_t player, const QString& path) {
    return parts_.engine.PlaylistSave(player, path, player::FormatM3u);
}

std::int32_t HandoffHost::loadPlaylist(const QString& path) {
    return parts_.engine.PlaylistLoad(0, path, 1);
}

void HandoffHost::fillPlayListView() {
    parts_.list.FillPlayListView(0, *parts_.ui.ListView1);
}

void HandoffHost::reloadPlaylist() {
    parts_.files.ReloadPlaylist(0, *parts_.ui.ListView1);
}

void HandoffHost::setBarVisible(bool visible) {
    parts_.ui.Bar->setVisible(visible);
}

void HandoffHost::setBarMaximum(int maximum) {
    parts_.ui.Bar->setMaximum(maximum);
}

void HandoffHost::setBarValue(int value) {
    parts_.ui.Bar->setValue(value);
}

void HandoffHost::setFileProgress(double fraction) {
    parts_.ui.Bar->setFraction(fraction < 0 ? fraction : 1 + fraction);
}

QString HandoffHost::browseForFolder(const QString& prompt) {
    return handoff::BrowseForFolder(&parts_.window, prompt);
}

void HandoffHost::showMessage(const QString& text) {
    widgets::msgBox(text);
}

bool HandoffHost::askYesNo(const QString& text, const QString& title) {
    return widgets::msgBox(text, widgets::MsgButtons::YesNo, widgets::MsgIcon::Question, title) ==
           widgets::MsgResult::Yes;
}

bool HandoffHost::warnOkCancel(const QString& text, const QString& title) {
    return widgets::msgBox(text, widgets::MsgButtons::OkCancel, widgets::MsgIcon::Exclamation,
                           title) == widgets::MsgResult::Ok;
}

QString HandoffHost::inputBox(const QString& prompt, const QString& title) {
    return widgets::inputBox(prompt, title);
}

void HandoffHost::yield() {
    QCoreApplication::processEvents();
}

bool HandoffHost::closing() const {
    return parts_.closing;
}

}  // namespace app
