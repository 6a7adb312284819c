// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/DroppedFiles.h"

#include <algorithm>
#include <exception>
#include <filesystem>

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include "lists/ListReader.h"
#include "platform/AbsolutePath.h"
#include "platform/Paths.h"
#include "platform/file/Regular.h"

using namespace Qt::Literals::StringLiterals;

namespace playlist {
namespace {

namespace fs = std::filesystem;

bool isList(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == u"m3u" || suffix == u"m3u8" || suffix == u"pls";
}

// What a folder stands for; more can be added by name.
bool isOffered(const QString& name) {
    static const QStringList suffixes{u"mp3"_s, u"mp2"_s, u"wav"_s, u"ogg"_s, u"wma"_s};
    return suffixes.contains(QFileInfo(name).suffix().toLower());
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
// may lead round in a circle. Hidden files and folders are left out.
void appendFolder(const fs::path& folder, QStringList& files, const std::stop_token& stop) {
    QStringList names, folders;
    std::error_code unreadable;
    fs::directory_iterator found(folder, unreadable);
    for (; !unreadable && found != fs::directory_iterator() && !stop.stop_requested();
         found.increment(unreadable)) {
        const fs::directory_entry& entry = *found;
        const QString name = platform::toQString(entry.path().filename());
        std::error_code error;
        if (name.startsWith(u'.')) continue;
        if (entry.is_directory(error)) {
            if (!entry.is_symlink(error)) folders += name;
        } else if (isOffered(name) && entry.is_regular_file(error)) {
            names += name;
        }
    }
    naturalSort(names);
    for (const QString& name : names) files += platform::toQString(folder / platform::toPath(name));
    naturalSort(folders);
    for (const QString& name : folders) appendFolder(folder / platform::toPath(name), files, stop);
}

void appendList(const QString& path, DroppedFiles& sorted) {
    try {
        for (const lists::ListedEntry& entry : lists::readListFile(path))
            sorted.files += entry.path;
    } catch (const std::exception& error) {
        sorted.refused += QString::fromUtf8(error.what());
    }
}

void append(const QString& path, DroppedFiles& sorted, const std::stop_token& stop) {
    const fs::path file = platform::toPath(path);
    const std::error_code reason = platform::file::reasonAgainst(file);
    std::error_code unknown;
    if (reason == platform::file::notRegular() && fs::is_directory(file, unknown))
        appendFolder(file, sorted.files, stop);
    else if (reason == platform::file::notRegular())
        sorted.refused += u"This is not a regular file: %1"_s.arg(path);
    else if (reason)
        sorted.refused += u"There is no such file: %1"_s.arg(path);
    else if (isList(path))
        appendList(path, sorted);
    else if (lists::namesAudio(path))
        sorted.files += path;
    else
        sorted.refused += u"This is no sound file: %1"_s.arg(path);
}

}  // namespace

DroppedFiles sortOut(const QStringList& paths, const std::stop_token& stop) {
    DroppedFiles sorted;
    QStringList absolute;
    for (const QString& path : paths) absolute += platform::absolutePath(path);
    const auto isListFile = [](const QString& path) { return isList(path) && lists::isFile(path); };
    if (!absolute.isEmpty() && std::all_of(absolute.begin(), absolute.end(), isListFile))
        sorted.list = absolute.takeFirst();
    for (const QString& path : absolute)
        if (!stop.stop_requested()) append(path, sorted, stop);
    return sorted;
}

QString refusedText(const QStringList& refused) {
    constexpr qsizetype shown = 8;
    constexpr qsizetype longest = 200;
    QStringList lines;
    for (const QString& line : refused.first(std::min(shown, refused.size())))
        lines +=
            line.size() > longest ? line.left(longest / 2) + u'…' + line.right(longest / 2) : line;
    if (refused.size() > shown) lines += u"… and %1 more."_s.arg(refused.size() - shown);
    return lines.join(u'\n');
}

}  // namespace playlist
