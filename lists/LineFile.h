// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>
#include <QStringList>

#include "platform/file/File.h"

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
    void check(bool done, const std::error_code& error) const;

    QString path_;
    platform::file::File file_;
    std::int64_t written_ = 0;
};

/// Puts a whole file of lines in the place of what was there. Throws platform::Error.
void writeLines(const QString& path, const QStringList& lines);

}  // namespace lists
