// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Naming.h"

#include <QHash>

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

QString nameGivenTwice(const QStringList& files, const Options& options) {
    QHash<QString, QString> sources;
    for (const QString& file : files) {
        const QString output = outputPath(options, outputStem(file));
        if (const QString earlier = sources.value(output); !earlier.isNull())
            return QStringLiteral("%1 and %2 would both be written to %3.")
                .arg(earlier, file, output);
        sources.insert(output, file);
    }
    return {};
}

QString headFile(const QString& targetPath, int index, const QString& entryPath) {
    return targetPath + QString::number(index) + u'_' + bareName(entryPath);
}

}  // namespace wizard
