// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QSet>
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

/// The path as it is, or with the first free " (2)", " (3)" ... before its extension where one of
/// `taken` bears that name already. Of the numbers, those below `first` are known to be taken.
QString freePath(const QString& path, const QSet<QString>& taken, int first = 2);

/// Where the head of entry `index` is kept: target + "2_Song.wav" for entry 2.
QString headFile(const QString& targetPath, int index, const QString& entryPath);

/// Gives the results of one run their paths, one file after the other. Two songs of one file name
/// get two results; only with a prefix, which repeats the name of the file before, do all go to one
/// path. A plain value: it touches no file.
class ResultPaths {
  public:
    /// The path of the next file's result. `name` is the name being built ("Song."), kept from
    /// file to file.
    QString next(const QString& file, const Options& options, QString& name);

  private:
    QSet<QString> taken_;
    QHash<QString, int> asked_;  ///< how often a path was wanted
};

}  // namespace wizard
