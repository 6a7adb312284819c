// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include <QByteArray>

#include "lists/Encoding.h"
#include "lists/ListText.h"

namespace lists {

/// Finds out, line by line, in which encoding a list without a byte-order mark is written: first
/// look() at every line in turn, then ask main() and likeliest().
class NarrowReading {
  public:
    /// `first` is what the list is expected to be in.
    NarrowReading(Encoding first, NamesFile namesFile);

    /// The encoding in which the line names a file that is there; nothing where there is none, or
    /// where the line is plain ASCII. Stops looking at the disk once it is clear what the list is
    /// in, or that none of its files is there.
    std::optional<Encoding> look(const QByteArray& line);

    /// What most lines are in.
    Encoding main() const;
    /// What a line is in that names no file.
    Encoding likeliest(const QByteArray& line) const;

  private:
    struct Candidate {
        Encoding encoding;
        int named = 0;  // lines that name a file in it
    };
    const Candidate& best() const;

    NamesFile namesFile_;
    std::vector<Candidate> candidates_;
    int lines_ = 0;    // that hold more than ASCII
    int inFirst_ = 0;  // of these, the ones that are text in the first candidate
    int named_ = 0;    // of these, the ones that name a file
};

}  // namespace lists
