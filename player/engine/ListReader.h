// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QByteArray>
#include <QString>

namespace player {

/// One entry as a playlist file states it. A plain value.
struct ListedEntry {
    QString path;                  ///< absolute and native, or a URL as it stands
    QString title;                 ///< what the list says; may be empty
    std::int64_t durationMs = -1;  ///< what the list says; -1 = nothing
};

/// Whether a path names an existing file that is no folder.
using FileExists = std::function<bool(const QString&)>;

/// True for "http://…" and the like, which name no local file; a drive letter is no scheme.
bool isUrl(const QString& name);

/// True for "C:\…", "C:/…" and "\\server\…", whatever system this is.
bool isWindowsPath(const QString& name);

/// The name of a file without its folder: what follows the last separator (in a Windows path, a
/// backslash too).
QString nameOf(const QString& path);

/// The path that a line of a list means, seen from the folder that the list is in: the first
/// reading that names a file of these: as it stands, without blanks at its ends, with this system's
/// separators for the others, percent-decoded, and both. Where none does, the likeliest. A file:
/// URI becomes its path, any other URL stays as it is. Names that allow only one reading cost no
/// look at the disk.
QString resolveListed(const QString& name, const QString& folder, const FileExists& exists);

/// Reads an M3U or a PLS playlist, told apart by content, in any encoding that decodeListLines
/// knows. `folder` is the absolute folder that relative names are seen from. Missing files and URLs
/// are kept. Bytes of length 0, or blanks alone, are an empty playlist. Throws platform::Error
/// whose text ("it …") completes a sentence on the file, where the bytes are no playlist or hold
/// more than kMaxEntries entries. Pure but for `exists`; any thread.
std::vector<ListedEntry> readList(const QByteArray& bytes, const QString& folder,
                                  const FileExists& exists);

/// The same for a file on disk. Refuses what is no regular file or is larger than 64 MB unread.
/// Throws platform::Error with a whole sentence.
std::vector<ListedEntry> readListFile(const QString& path);

}  // namespace player
