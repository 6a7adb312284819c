// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainPorts.h"

#include "player/engine/PlayerEngine.h"
#include "ui_frmMain.h"
#include "widgets/Dispatch.h"

namespace app {

MainList::MainList(Ui::frmMain& ui, player::PlayerEngine& engine) : ui_(ui), engine_(engine) {
    const widgets::ListView* list = ui_.ListView1;
    QObject::connect(list, &widgets::ListView::refilled, list,
                     widgets::guarded(this, &MainList::markAgain));
}

int MainList::rowCount() const {
    return ui_.ListView1->rowCount();
}

bool MainList::rowSelected(int row) const {
    return row >= 1 && row <= rowCount() && ui_.ListView1->isSelected(row);
}

QString MainList::entryPath(int entry) const {
    return engine_.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry), player::ItemInfoPath);
}

QString MainList::entryName(int entry) const {
    return engine_.PlaylistGetItemInfo(0, static_cast<std::int16_t>(entry), player::ItemInfoName);
}

void MainList::markRow(int row, const QString& reason) {
    failed_[entryPath(row - 1)] = reason;
    ui_.ListView1->setMark(row, reason);
}

void MainList::clearRowMarks() {
    failed_.clear();
    ui_.ListView1->clearMarks();
}

// The rows are made anew after every change of the list; what failed is known by its file.
void MainList::markAgain() {
    if (failed_.isEmpty()) return;
    for (int row = 1; row <= rowCount(); ++row) {
        const QString reason = failed_.value(entryPath(row - 1));
        if (!reason.isEmpty()) ui_.ListView1->setMark(row, reason);
    }
}

void MainBar::setShown(bool shown) {
    ui_.Bar->setVisible(shown);
}

void MainBar::setMaximum(int pieces) {
    ui_.Bar->setMaximum(pieces);
}

void MainBar::setValue(int pieces) {
    ui_.Bar->setFraction(-1);
    ui_.Bar->setValue(pieces);
}

void MainBar::setFraction(double fraction) {
    ui_.Bar->setFraction(fraction);
}

void MainBar::setStatus(const QString& text) {
    ui_.Label5->setText(text);
}

}  // namespace app
