// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/modules/modPath.h"

namespace modPath {
namespace {

QString trimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == QLatin1Char(' ')) ++first;
    while (last > first && text[last - 1] == QLatin1Char(' ')) --last;
    return text.mid(first, last - first);
}

}  // namespace

QString GetPathPart(const QString& path) {
    const QString trimmed = trimBlanks(path);
    const QChar separator =
        trimmed.startsWith(QLatin1Char('/')) ? QLatin1Char('/') : QLatin1Char('\\');
    return trimmed.left(trimmed.lastIndexOf(separator) + 1);
}

QString GetFileNamePart(const QString& path) {
    const QString folder = GetPathPart(path);
    return path.contains(folder) ? path.mid(folder.size()) : trimBlanks(path);
}

}  // namespace modPath
