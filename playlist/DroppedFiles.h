// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace playlist {

/// What files and folders given by hand (dropped, or as arguments) amount to. A plain value.
struct DroppedFiles {
    QString list;         ///< the first playlist file among them, or empty
    QStringList files;    ///< sound files in the order given, folders replaced by their content
    QStringList missing;  ///< what there is no file or folder of
};

/// Sorts out paths: a folder stands for the sound files in it and below, in natural order ("2"
/// before "10"); a file named by itself is taken whatever its extension; paths that are not
/// absolute are taken from the current folder. Results have native separators.
DroppedFiles sortOut(const QStringList& paths);

}  // namespace playlist
