// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>

class QUrl;

namespace lists {

/// Whether a path names an existing file that is no folder.
using FileExists = std::function<bool(const QString&)>;

/// The one on disk: true for a regular file, also behind links.
bool isFile(const QString& path);

/// Whether a name ends as those of sound files do.
bool namesAudio(const QString& name);

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

/// The file that a file: URL names, whatever the bytes of its name; empty for another URL.
QString localPath(const QUrl& url);

}  // namespace lists
