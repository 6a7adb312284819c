// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace ports {

/// The files that a command works on, as they are shown. Rows are counted from 1, entries from 0:
/// entry n stands in row n + 1. On the thread of the flow that asks.
class FileList {
  public:
    virtual ~FileList() = default;

    virtual int rowCount() const = 0;
    virtual bool rowSelected(int row) const = 0;  ///< false for a row that there is not
    virtual QString entryPath(int entry) const = 0;
    virtual QString entryName(int entry) const = 0;
    /// Marks a row as failed, the reason as its tooltip, until clearRowMarks().
    virtual void markRow(int row, const QString& reason) = 0;
    virtual void clearRowMarks() = 0;
};

}  // namespace ports
