// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ListModel.h"

#include <utility>

#include <QApplication>
#include <QFont>
#include <QStyle>

#include "widgets/PlainToolTip.h"

using namespace Qt::Literals::StringLiterals;

namespace widgets {
namespace {

/// Only the weight: the rest is the view's.
QFont bold() {
    QFont font;
    font.setBold(true);
    return font;
}

}  // namespace

void ListModel::setColumns(const QStringList& captions) {
    beginResetModel();
    columns_ = captions;
    rows_.clear();
    marks_.clear();
    endResetModel();
}

void ListModel::setRows(std::vector<QStringList> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    marks_.clear();
    endResetModel();
}

void ListModel::append(const QString& text) {
    const int row = static_cast<int>(rows_.size());
    beginInsertRows({}, row, row);
    rows_.push_back({text});
    endInsertRows();
}

void ListModel::setCell(int row, int column, const QString& text) {
    QStringList& texts = rows_.at(static_cast<std::size_t>(row));
    while (texts.size() <= column) texts.append(QString());
    if (texts[column] == text) return;
    texts[column] = text;
    Q_EMIT dataChanged(index(row, column), index(row, column));
}

QString ListModel::cell(int row, int column) const {
    return rows_.at(static_cast<std::size_t>(row)).value(column);
}

void ListModel::setMark(int row, const QString& reason) {
    marks_[row] = reason;
    changed(row);
}

void ListModel::clearMarks() {
    const QList<int> rows = marks_.keys();
    marks_.clear();
    for (const int row : rows) changed(row);
}

QString ListModel::mark(int row) const {
    return marks_.value(row);
}

void ListModel::changed(int row) {
    Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
}

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (const QString reason = mark(index.row()); !reason.isEmpty()) {
        if (role == Qt::ToolTipRole) return plainToolTip(reason);
        if (role == Qt::AccessibleDescriptionRole) return reason;
        if (role == Qt::DecorationRole && index.column() == 0)
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    }
    const bool plays = index.row() == playing_;
    const QString text = cell(index.row(), index.column());
    if (role == Qt::DisplayRole) return plays && index.column() == 0 ? u"▶ "_s + text : text;
    if (role == Qt::ToolTipRole) return plainToolTip(text);
    if (role == Qt::FontRole && plays) return bold();
    if (role == Qt::AccessibleDescriptionRole && plays) return u"Playing"_s;
    return {};
}

void ListModel::setPlaying(int row) {
    if (row == playing_) return;
    for (const int changing : {std::exchange(playing_, row), row})
        if (changing >= 0 && changing < rowCount()) changed(changing);
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) return columns_.value(section);
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    return {};
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags onRow = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return index.isValid() ? onRow : Qt::ItemFlags(Qt::ItemIsDropEnabled);
}

Qt::DropActions ListModel::supportedDropActions() const {
    return Qt::CopyAction;
}

}  // namespace widgets
