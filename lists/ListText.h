// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "lists/Encoding.h"

namespace lists {

/// Whether a line of a list, read in some encoding, names a file that is there.
using NamesFile = std::function<bool(const QString& line)>;

/// A playlist file as lines of text that remember their bytes: what is read in some encoding is
/// written back in the same. One thread.
///
/// The encoding of a line: UTF-16 for the whole file, where a byte-order mark says so, or where the
/// file holds NULs and is plain text in UTF-16; else line by line the first one of these in which
/// the line names a file that is there: what an #EXTENC line says or else UTF-8, the narrow
/// encoding of the user's language, the narrow encodings of others, and the bytes as they stand in
/// file names. A line that names no file in any is read as most of the others are.
class ListText {
  public:
    /// Takes the bytes of a file apart at CR LF, LF or CR. `namesFile` is asked only about lines
    /// that hold more than ASCII. Throws platform::Error ("it …") where UTF-16 ends in half a
    /// character.
    ListText(const QByteArray& bytes, const NamesFile& namesFile);

    /// All lines, without their ends; blanks and everything else in them is kept.
    QStringList lines() const;

    /// Puts `to` in the place of every line that is exactly `from` (letter case and blanks
    /// counted). Throws platform::Error where `to` has no form in the encoding of such a line or
    /// would not stay one line.
    void replaceLine(const QString& from, const QString& to);

    /// The file: its mark, and every line, ended by CR LF.
    QByteArray bytes() const;

  private:
    struct Line {
        QByteArray bytes;
        QString text;
        Encoding encoding;
    };
    void readWide(const QByteArray& bytes, const Encoding& encoding);
    void readNarrow(const QByteArray& bytes, const NamesFile& namesFile);

    QByteArray mark_;
    Encoding main_ = Encoding::utf8();  // of most lines; of new line ends
    std::vector<Line> lines_;
};

/// Whether a line of text can be part of a playlist: it holds no control characters but a tab, a
/// form feed and the end-of-file mark of old systems.
bool isLineOfText(const QString& line);

/// One line for a text file in UTF-8, its end CR LF. Throws platform::Error ("… cannot be put into
/// a text file") for what has no UTF-8 form or would not stay one line.
QByteArray encodeLine(const QString& text);

}  // namespace lists
