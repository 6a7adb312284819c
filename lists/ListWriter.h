// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "lists/ListReader.h"

namespace lists {

/// M3U: one path a line, CR LF, UTF-8 without a mark, no header and no comments, since companion
/// programs take every line for a file. A name that is no UTF-8 stands as the bytes it has on disk.
/// Throws platform::Error for a path that no line can hold (a line break or another control
/// character, or half of a surrogate pair). What is written reads back into the same entries. Pure.
QByteArray writeM3u(const std::vector<ListedEntry>& entries);

/// PLS version 2: File, Title (the file name where an entry has no title), Length (seconds, -1
/// where unknown), the exact number of entries; CR LF, UTF-8. Titles lose their control characters.
/// Throws like writeM3u.
QByteArray writePls(const std::vector<ListedEntry>& entries);

/// Puts bytes in the place of a file (of the one behind it, where it is a symbolic link): whole, or
/// not at all. Throws platform::Error.
void replaceListFile(const QString& path, const QByteArray& bytes);

/// The same for a text file of lines: UTF-8, CR LF after every line, no mark. Throws before
/// anything is written for a text that has no UTF-8 form or would not stay one line.
void writeLines(const QString& path, const QStringList& lines);

}  // namespace lists
