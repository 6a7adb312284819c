// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include "wizard/Settings.h"

namespace wizard {

/// What follows the last separator of a path.
QString bareName(const QString& path);

/// The bare name less its last three characters, whatever they are: "Song.mp3" gives "Song.",
/// "Track.flac" gives "Track.f".
QString outputStem(const QString& path);

/// Where a result goes: the stem in the target folder with the ending of the format.
QString outputPath(const Options& options, const QString& stem);

/// A sentence that names the first two files whose results would have the same path, one thus
/// taking the other's place; empty where there are none.
QString nameGivenTwice(const QStringList& files, const Options& options);

/// Where the head of entry `index` is kept: target + "2_Song.wav" for entry 2.
QString headFile(const QString& targetPath, int index, const QString& entryPath);

}  // namespace wizard
