// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stop_token>

#include <QString>
#include <QStringList>

namespace playlist {

/// What files and folders given by hand (dropped, or as arguments) amount to. A plain value.
struct DroppedFiles {
    QString list;         ///< the list to load in place of the present one; empty = none
    QStringList files;    ///< sound files to add, in the order given
    QStringList refused;  ///< a line for each that is passed over, with the reason
};

/// Sorts out paths. Where lists alone are given, the first one replaces the present list, and the
/// entries of the others are added to it. Otherwise all is added in the order given: the entries of
/// a list; for a folder the sound files in it and below, in natural order ("2" before "10"); sound
/// files. What is no sound by its ending, is not there or is a list that cannot be read is refused.
/// Paths that are not absolute are taken from the current folder. Results have native separators.
/// Reads the disk, for as long as it takes, on any thread; asked to stop, it answers what it has.
DroppedFiles sortOut(const QStringList& paths, const std::stop_token& stop = {});

/// The refused ones as one text that fits on the screen: the first of them, and how many more.
QString refusedText(const QStringList& refused);

}  // namespace playlist
