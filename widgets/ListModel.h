// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <QAbstractTableModel>
#include <QHash>
#include <QStringList>

namespace widgets {

/// The rows of a ListView as plain texts, one QStringList per row. Zero-based, as Qt counts.
class ListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void setColumns(const QStringList& captions);
    void setRows(std::vector<QStringList> rows);
    void append(const QString& text);
    void setCell(int row, int column, const QString& text);
    QString cell(int row, int column) const;
    /// Marks stay with the row's number until new rows come.
    void setMark(int row, const QString& reason);
    void clearMarks();
    QString mark(int row) const;  ///< the reason; empty where there is no mark
    /// The row that plays, shown in bold behind a sign; -1 for none. Stays with the row's number.
    void setPlaying(int row);
    int playing() const { return playing_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override;

  private:
    QStringList columns_;
    void changed(int row);

    std::vector<QStringList> rows_;
    QHash<int, QString> marks_;  // reason by row
    int playing_ = -1;
};

}  // namespace widgets
