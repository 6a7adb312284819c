// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>

namespace handoff {

/// One entry to be copied.
struct CopyItem {
    QString source;  ///< full path
    QString name;    ///< file name, without folder
};

/// What a project's list of copied files is called.
inline const QString projectListName = QStringLiteral("temp.m3u");

/// The line that stands for a file name in such a list: the name itself; one that would read as a
/// comment is given its folder ("./#1.mp3").
QString projectListLine(const QString& name);

/// Copies one file to `target` immediately followed by its name, on a worker thread, while this
/// thread handles its events. `progress` is told the fraction done, on this thread. Returns false
/// where the program ended meanwhile and the copy was abandoned. Throws platform::Error.
bool copyWhileYielding(const CopyItem& item, const QString& target,
                       const std::function<void(double)>& progress);

}  // namespace handoff
