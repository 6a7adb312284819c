// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>
#include <vector>

#include <QStringList>
#include <QTreeView>
#include <QUrl>

namespace widgets {

class ListModel;

/// A report-style list: rows with a text and sub-items under column captions, a selected flag per
/// row, and one current row, the "selected item". Rows count from 1. After every refill the first
/// row is current and selected. Fast for tens of thousands of rows: refill in one call, not row by
/// row. It knows nothing of what the rows stand for. Window thread only.
class ListView : public QTreeView {
    Q_OBJECT
  public:
    explicit ListView(QWidget* parent = nullptr);

    void setColumns(const QStringList& captions);          ///< empties the list
    void setColumnCharacters(int column, int characters);  ///< column from 0; its width

    int rowCount() const;
    void clearRows();
    /// Replaces all rows: per row its text and then its sub-items.
    void setRows(std::vector<QStringList> rows);
    int addRow(const QString& text);  ///< returns its number; the first one becomes current

    QString rowText(int row) const;
    QString subItem(int row, int subItem) const;  ///< subItem from 1; empty where there is none
    void setSubItem(int row, int subItem, const QString& text);

    /// Marks a row with a warning sign, and the reason as its tooltip; until clearMarks() or new
    /// rows.
    void setMark(int row, const QString& reason);
    void clearMarks();
    QString mark(int row) const;  ///< the reason; empty where there is no mark

    /// Shows which row plays, apart from the selection; 0 for none. The number stays when rows come
    /// or go.
    void setPlayingRow(int row);
    int playingRow() const;

    /// The selected item, 0 without rows.
    int currentRow() const;
    /// Makes a row current and the only selected one; a number that no row has is ignored.
    void selectRow(int row);
    void ensureVisible(int row);

    /// The first and last row on screen, wholly or in part; 0 and 0 without rows.
    std::pair<int, int> shownRows() const;

    bool isSelected(int row) const;
    void setSelected(int row, bool selected);  ///< leaves the current row and other flags alone
    void setAllSelected(bool selected);
    std::vector<int> selectedRows() const;  ///< ascending

    bool multiSelect() const;
    /// Switching it off leaves only the current row selected.
    void setMultiSelect(bool on);

  Q_SIGNALS:
    void rowDoubleClicked(int row);
    void scrolled();  ///< other rows came on screen, or more or fewer of them
    void refilled();  ///< all rows were replaced; marks are gone
    /// Files dropped on the list; `row` = the row in front of which they were dropped, rowCount() +
    /// 1 behind the last.
    void filesDropped(const QList<QUrl>& urls, int row);

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QModelIndex at(int row) const;
    int dropRow(const QPoint& point) const;

    ListModel* model_;
};

}  // namespace widgets
