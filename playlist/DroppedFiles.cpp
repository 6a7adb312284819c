// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/DroppedFiles.h"

#include <algorithm>

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

using namespace Qt::Literals::StringLiterals;

namespace playlist {
namespace {

bool isList(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == u"m3u" || suffix == u"m3u8" || suffix == u"pls";
}

void naturalSort(QStringList& names) {
    // The C locale knows no natural order.
    const QLocale locale;
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), collator);
}

// Files of a folder before those of its sub-folders; links to folders are not followed, for they
// may lead round in a circle.
void appendFolder(const QString& path, QStringList& files) {
    const QDir folder(path);
    QStringList names =
        folder.entryList({u"*.mp3"_s, u"*.mp2"_s, u"*.wav"_s, u"*.ogg"_s, u"*.wma"_s}, QDir::Files);
    naturalSort(names);
    for (const QString& name : names) files.append(QDir::toNativeSeparators(folder.filePath(name)));
    QStringList folders = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    naturalSort(folders);
    for (const QString& name : folders) appendFolder(folder.filePath(name), files);
}

}  // namespace

DroppedFiles sortOut(const QStringList& paths) {
    DroppedFiles sorted;
    for (const QString& path : paths) {
        const QFileInfo info(path);
        const QString absolute = QDir::toNativeSeparators(info.absoluteFilePath());
        if (!info.exists()) {
            sorted.missing.append(absolute);
        } else if (info.isDir()) {
            appendFolder(absolute, sorted.files);
        } else if (!isList(absolute)) {
            sorted.files.append(absolute);
        } else if (sorted.list.isEmpty()) {
            sorted.list = absolute;
        }
    }
    return sorted;
}

}  // namespace playlist
