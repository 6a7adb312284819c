// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

#include <QString>

namespace platform {

/// Where one of the program's own fixed paths ("C:\\burn_list.dat") really lies. On Windows that is
/// the path itself; elsewhere the program's private drive C, the folder drive_c under
/// QStandardPaths::AppLocalDataLocation. The folder that holds the result exists afterwards where
/// it is the root of that drive. Not for paths that the user picks. Any thread.
QString fixedPath(const QString& windowsPath);

/// The folder the program was started from, native separators, without a trailing one (but at a
/// drive root).
QString applicationFolder();

/// The application folder followed by a relative path that begins with a backslash, its separators
/// made native.
QString besideApplication(const QString& relativeWindowsPath);

/// The folder separator of this system: a slash, on Windows a backslash.
QChar nativeSeparator();

/// Between Qt's text and the standard library's paths, without loss on either system.
std::filesystem::path toPath(const QString& text);
QString toQString(const std::filesystem::path& path);

/// A path as UTF-8, for sentences shown to a person.
std::string toUtf8(const std::filesystem::path& path);

}  // namespace platform
