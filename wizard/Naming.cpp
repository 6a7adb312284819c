// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Naming.h"

#include <algorithm>

#include "platform/Paths.h"
#include "wizard/OutputFormat.h"

namespace wizard {

QString bareName(const QString& path) {
    return path.mid(path.lastIndexOf(platform::nativeSeparator()) + 1);
}

QString outputStem(const QString& path) {
    return bareName(path).chopped(qMin(qsizetype{3}, bareName(path).size()));
}

QString outputPath(const Options& options, const QString& stem) {
    return options.targetPath + stem + fileEnding(options.format);
}

QString freePath(const QString& path, const QSet<QString>& taken, int first) {
    const qsizetype name = path.size() - bareName(path).size();
    const qsizetype dot = path.lastIndexOf(u'.');
    const qsizetype end = dot < name ? path.size() : dot;
    QString free = path;
    for (int number = first; taken.contains(free); ++number)
        free = path.first(end) + QStringLiteral(" (%1)").arg(number) + path.sliced(end);
    return free;
}

QString headFile(const QString& targetPath, int index, const QString& entryPath) {
    return targetPath + QString::number(index) + u'_' + bareName(entryPath);
}

QString ResultPaths::next(const QString& file, const Options& options, QString& name) {
    // A prefix keeps the name of the file before, and is itself never used.
    if (options.hasPrefix) return outputPath(options, name);
    name = outputStem(file);
    const QString wanted = outputPath(options, name);
    const int before = asked_[wanted]++;
    const QString path = freePath(wanted, taken_, std::max(2, before + 1));
    taken_.insert(path);
    return path;
}

}  // namespace wizard
