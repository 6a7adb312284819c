// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include <QByteArray>
#include <QString>

#include "lists/Names.h"

namespace lists {

/// As many entries as a playlist holds: indices and counts are 16 bits wide.
constexpr int maxEntries = 32767;

/// One entry as a playlist file states it. A plain value.
struct ListedEntry {
    QString path;                  ///< absolute and native, or a URL as it stands
    QString title;                 ///< what the list says; may be empty
    std::int64_t durationMs = -1;  ///< what the list says; -1 = nothing
};

/// Reads an M3U or a PLS playlist, told apart by content, in any encoding that ListText
/// knows. `folder` is the absolute folder that relative names are seen from. Missing files and URLs
/// are kept. Bytes of length 0, or blanks alone, are an empty playlist. Throws platform::Error
/// whose text ("it …") completes a sentence on the file, where the bytes are no playlist or hold
/// more than maxEntries entries. Pure but for `exists`; any thread.
std::vector<ListedEntry> readList(const QByteArray& bytes, const QString& folder,
                                  const FileExists& exists);

/// The same for a file on disk. Refuses what is no regular file or is larger than 64 MB unread.
/// Throws platform::Error with a whole sentence.
std::vector<ListedEntry> readListFile(const QString& path);

}  // namespace lists
