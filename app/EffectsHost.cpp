// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/EffectsHost.h"

#include <utility>

#include <QCoreApplication>

#include "effects/engine/Editor.h"
#include "player/engine/PlayerEngine.h"
#include "ui_frmMain.h"
#include "widgets/MsgBox.h"

namespace app {

EffectsHost::EffectsHost(Parts parts) : parts_(std::move(parts)) {
    const widgets::ListView* list = parts_.ui.ListView1;
    QObject::connect(list, &widgets::ListView::refilled, list, [this] { markAgain(); });
}

effects::Editor& EffectsHost::editor() {
    return parts_.editor;
}

int EffectsHost::rowCount() const {
    return parts_.ui.ListView1->rowCount();
}

bool EffectsHost::rowSelected(int row) const {
    return row >= 1 && row <= rowCount() && parts_.ui.ListView1->isSelected(row);
}

QString EffectsHost::entryPath(int entry) const {
    return parts_.engine.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry),
                                             player::ItemInfoPath);
}

QString EffectsHost::entryName(int entry) const {
    return parts_.engine.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry),
                                             player::ItemInfoName);
}

void EffectsHost::markRow(int row, const QString& reason) {
    failed_[entryPath(row - 1)] = reason;
    parts_.ui.ListView1->setMark(row, reason);
}

void EffectsHost::clearRowMarks() {
    failed_.clear();
    parts_.ui.ListView1->clearMarks();
}

void EffectsHost::replaceFile(const QString& path, const std::function<void()>& work) {
    const player::FileRelease released(parts_.engine, path);
    work();
}

// The rows are made anew after every change of the list; what failed is known by its file.
void EffectsHost::markAgain() {
    if (failed_.isEmpty()) return;
    for (int row = 1; row <= rowCount(); ++row) {
        const QString reason = failed_.value(entryPath(row - 1));
        if (!reason.isEmpty()) parts_.ui.ListView1->setMark(row, reason);
    }
}

void EffectsHost::setBarVisible(bool visible) {
    parts_.ui.Bar->setVisible(visible);
}

void EffectsHost::setBarMaximum(int maximum) {
    parts_.ui.Bar->setMaximum(maximum);
}

void EffectsHost::setBarValue(int value) {
    parts_.ui.Bar->setFraction(-1);
    parts_.ui.Bar->setValue(value);
}

void EffectsHost::setFileProgress(double fraction) {
    parts_.ui.Bar->setFraction(fraction);
}

void EffectsHost::setStatus(const QString& text) {
    parts_.ui.Label5->setText(text);
}

void EffectsHost::setFileName(const QString& path) {
    parts_.ui.txtFile_Name->setText(path);
}

QString EffectsHost::fileName() const {
    return parts_.ui.txtFile_Name->text();
}

void EffectsHost::stopPlayback() {
    parts_.stopPlayback();
}

void EffectsHost::saveStep() {
    parts_.saveStep();
}

// The focus would move on to what stays enabled, so it is put back where it was.
void EffectsHost::setCommandButtonsEnabled(bool enabled) {
    const Ui::frmMain& ui = parts_.ui;
    if (!enabled) focus_ = parts_.window.focusWidget();
    for (QWidget* button :
         {ui.CommandLoad1, ui.CommandSave1, ui.CommandAddSong1, ui.CommandRemove1,
          ui.CommandMoveUp1, ui.CommandMoveDown1, ui.CommandPlay1, ui.CommandPause1,
          ui.CommandStop1, ui.CommandPrev1, ui.CommandNext1, ui.Button1, ui.Button2, ui.Button7,
          ui.CommandRewind1, ui.CommandForward1})
        button->setEnabled(enabled);
    parts_.setDialogsEnabled(enabled);
}

void EffectsHost::setListEnabled(bool enabled) {
    parts_.ui.ListView1->setEnabled(enabled);
    if (enabled && focus_) focus_->setFocus();
}

// The engine draws nothing in this window; what is kept is whether it would.
void EffectsHost::setEditorVisible(bool visible) {
    parts_.editor.setProperty("visible", visible);
}

void EffectsHost::yield() {
    QCoreApplication::processEvents();
}

void EffectsHost::repaint() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void EffectsHost::showMessage(const QString& text) {
    widgets::msgBox(text);
}

bool EffectsHost::closing() const {
    return parts_.closing;
}

}  // namespace app
