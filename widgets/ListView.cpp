// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ListView.h"

#include <algorithm>

#include <QDragEnterEvent>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>

#include "widgets/Dispatch.h"
#include "widgets/ListModel.h"

namespace widgets {

ListView::ListView(QWidget* parent) : QTreeView(parent), model_(new ListModel(this)) {
    setModel(model_);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setTextElideMode(Qt::ElideRight);
    setVerticalScrollMode(ScrollPerItem);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(DropOnly);
    setTabKeyNavigation(false);
    header()->setSectionsMovable(false);
    connect(model_, &ListModel::modelReset, this, &ListView::refilled);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &ListView::scrolled);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, &ListView::scrolled);
    connect(this, &QTreeView::doubleClicked, this, guarded([this](const QModelIndex& index) {
                Q_EMIT rowDoubleClicked(index.row() + 1);
            }));
}

void ListView::setColumns(const QStringList& captions) {
    model_->setColumns(captions);
    header()->setStretchLastSection(true);
}

void ListView::setColumnCharacters(int column, int characters) {
    setColumnWidth(column, fontMetrics().horizontalAdvance(QLatin1Char('0')) * characters);
}

int ListView::rowCount() const {
    return model_->rowCount();
}

void ListView::clearRows() {
    model_->setRows({});
}

void ListView::setRows(std::vector<QStringList> rows) {
    model_->setRows(std::move(rows));
    selectRow(1);
}

void ListView::setMark(int row, const QString& reason) {
    if (row >= 1 && row <= rowCount()) model_->setMark(row - 1, reason);
}

void ListView::clearMarks() {
    model_->clearMarks();
}

QString ListView::mark(int row) const {
    return model_->mark(row - 1);
}

int ListView::addRow(const QString& text) {
    model_->append(text);
    if (rowCount() == 1) selectRow(1);
    return rowCount();
}

QString ListView::rowText(int row) const {
    return model_->cell(row - 1, 0);
}

QString ListView::subItem(int row, int subItem) const {
    return model_->cell(row - 1, subItem);
}

void ListView::setSubItem(int row, int subItem, const QString& text) {
    model_->setCell(row - 1, subItem, text);
}

void ListView::setPlayingRow(int row) {
    model_->setPlaying(row - 1);
}

int ListView::playingRow() const {
    return model_->playing() + 1;
}

int ListView::currentRow() const {
    return currentIndex().row() + 1;
}

void ListView::selectRow(int row) {
    if (row < 1 || row > rowCount()) return;
    selectionModel()->setCurrentIndex(
        at(row), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ListView::ensureVisible(int row) {
    if (row >= 1 && row <= rowCount()) scrollTo(at(row));
}

std::pair<int, int> ListView::shownRows() const {
    if (rowCount() == 0) return {0, 0};
    const QModelIndex last = indexAt(QPoint(0, viewport()->height() - 1));
    return {indexAt(QPoint(0, 0)).row() + 1, last.isValid() ? last.row() + 1 : rowCount()};
}

bool ListView::isSelected(int row) const {
    return selectionModel()->isSelected(at(row));
}

void ListView::setSelected(int row, bool selected) {
    selectionModel()->select(
        at(row), (selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect) |
                     QItemSelectionModel::Rows);
}

void ListView::setAllSelected(bool selected) {
    if (rowCount() == 0) return;
    const QItemSelection all(at(1), at(rowCount()));
    selectionModel()->select(
        all, (selected ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Clear) |
                 QItemSelectionModel::Rows);
}

std::vector<int> ListView::selectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row + 1);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

bool ListView::multiSelect() const {
    return selectionMode() == ExtendedSelection;
}

void ListView::setMultiSelect(bool on) {
    if (on == multiSelect()) return;
    setSelectionMode(on ? ExtendedSelection : SingleSelection);
    if (!on) selectRow(currentRow());
}

void ListView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void ListView::dragMoveEvent(QDragMoveEvent* event) {
    QTreeView::dragMoveEvent(event);  // draws the indicator
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void ListView::dropEvent(QDropEvent* event) {
    if (!event->mimeData()->hasUrls()) return;
    const int row = dropRow(event->position().toPoint());
    event->acceptProposedAction();
    setState(NoState);
    viewport()->update();
    Q_EMIT filesDropped(event->mimeData()->urls(), row);
}

int ListView::dropRow(const QPoint& point) const {
    const QModelIndex index = indexAt(point);
    if (!index.isValid()) return rowCount() + 1;
    const QRect rect = visualRect(index);
    return index.row() + (point.y() < rect.center().y() ? 1 : 2);
}

// Space is left to whoever owns the list; without modifiers it would only select what is selected.
void ListView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
        return event->ignore();
    }
    QTreeView::keyPressEvent(event);
}

QModelIndex ListView::at(int row) const {
    return model_->index(row - 1, 0);
}

}  // namespace widgets
