// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

namespace lists {

/// A text file being written line by line: UTF-8, CR LF after every line, no byte-order mark. What
/// has been written is in the file at once, not only at the end. One thread.
class LineFile {
  public:
    /// Creates or truncates. Throws platform::Error where the file cannot be opened.
    explicit LineFile(const QString& path);

    /// Throws platform::Error where the text has no UTF-8 form or would not stay one line, or where
    /// it cannot be written.
    void writeLine(const QString& text);

  private:
    QFile file_;
};

/// Writes a whole file of lines. Throws platform::Error.
void writeLines(const QString& path, const QStringList& lines);

}  // namespace lists
