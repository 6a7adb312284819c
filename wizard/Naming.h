// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace wizard {

/// What follows the last separator of a path.
QString bareName(const QString& path);

/// The bare name less its last three characters, whatever they are: "Song.mp3" gives "Song.",
/// "Track.flac" gives "Track.f".
QString outputStem(const QString& path);

/// Where the head of entry `index` is kept: target + "2_Song.wav" for entry 2.
QString headFile(const QString& targetPath, int index, const QString& entryPath);

}  // namespace wizard
