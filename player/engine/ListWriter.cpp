// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/ListWriter.h"

#include <cmath>

#include <QSaveFile>

#include "platform/Error.h"
#include "player/engine/ListReader.h"

namespace player {
namespace {

bool isWritable(const QString& text) {
    return text.isValidUtf16() && !text.contains(QLatin1Char('\n')) &&
           !text.contains(QLatin1Char('\r')) && !text.contains(QChar(0));
}

QByteArray pathBytes(const Entry& entry) {
    if (!isWritable(entry.path))
        throw platform::Error("The name of the file \"" + entry.path.toStdString() +
                              "\" cannot be written into a playlist.");
    return entry.path.toUtf8();
}

QByteArray titleBytes(const Entry& entry) {
    const QString title = entry.title.isEmpty() ? nameOf(entry.path) : entry.title;
    return title.simplified().toUtf8();
}

QByteArray seconds(const Entry& entry) {
    if (entry.durationMs < 0) return "-1";
    return QByteArray::number(qlonglong(std::llround(double(entry.durationMs) / 1000)));
}

}  // namespace

QByteArray writeM3u(const std::vector<Entry>& entries) {
    QByteArray bytes;
    for (const Entry& entry : entries) bytes += pathBytes(entry) + "\r\n";
    return bytes;
}

QByteArray writePls(const std::vector<Entry>& entries) {
    QByteArray bytes = "[playlist]\r\n";
    int number = 0;
    for (const Entry& entry : entries) {
        const QByteArray n = QByteArray::number(++number);
        bytes += "File" + n + "=" + pathBytes(entry) + "\r\n";
        bytes += "Title" + n + "=" + titleBytes(entry) + "\r\n";
        bytes += "Length" + n + "=" + seconds(entry) + "\r\n";
    }
    return bytes + "NumberOfEntries=" + QByteArray::number(number) + "\r\nVersion=2\r\n";
}

void replaceListFile(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);  // resolves links; without a fall-back to writing the target itself
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
    if (!written)
        throw platform::Error("The playlist \"" + path.toStdString() +
                              "\" cannot be written: " + file.errorString().toStdString() + ".");
}

}  // namespace player
