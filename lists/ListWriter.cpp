// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/ListWriter.h"

#include <cmath>
#include <optional>

#include "lists/Encoding.h"
#include "lists/ListText.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/Replacement.h"

namespace lists {
namespace {

bool isControl(QChar c) {
    return c.unicode() < 0x20 || c.unicode() == 0x7F;
}

QByteArray pathBytes(const ListedEntry& entry) {
    const std::optional<QByteArray> bytes = Encoding::utf8().encode(entry.path);
    if (!bytes || !isLineOfText(entry.path))
        throw platform::Error("The name of the file \"" + entry.path.toStdString() +
                              "\" cannot be written into a playlist.");
    return *bytes;
}

// Line breaks become blanks; what else is no character of a line is left out.
QByteArray titleBytes(const ListedEntry& entry) {
    const QString title = entry.title.isEmpty() ? nameOf(entry.path) : entry.title;
    QString text = title.simplified();
    text.removeIf(isControl);
    return text.toUtf8();
}

QByteArray seconds(const ListedEntry& entry) {
    if (entry.durationMs < 0) return "-1";
    return QByteArray::number(qlonglong(std::llround(double(entry.durationMs) / 1000)));
}

}  // namespace

QByteArray writeM3u(const std::vector<ListedEntry>& entries) {
    QByteArray bytes;
    for (const ListedEntry& entry : entries) bytes += pathBytes(entry) + "\r\n";
    return bytes;
}

QByteArray writePls(const std::vector<ListedEntry>& entries) {
    QByteArray bytes = "[playlist]\r\n";
    int number = 0;
    for (const ListedEntry& entry : entries) {
        const QByteArray n = QByteArray::number(++number);
        bytes += "File" + n + "=" + pathBytes(entry) + "\r\n";
        bytes += "Title" + n + "=" + titleBytes(entry) + "\r\n";
        bytes += "Length" + n + "=" + seconds(entry) + "\r\n";
    }
    return bytes + "NumberOfEntries=" + QByteArray::number(number) + "\r\nVersion=2\r\n";
}

void replaceListFile(const QString& path, const QByteArray& bytes) {
    platform::file::replaceWith(platform::toPath(path), std::as_bytes(std::span(bytes)));
}

void writeLines(const QString& path, const QStringList& lines) {
    QByteArray bytes;
    try {
        for (const QString& line : lines) bytes += encodeLine(line);
    } catch (const platform::Error& reason) {
        throw platform::Error("“" + path.toStdString() +
                              "” could not be written: " + reason.what() + ".");
    }
    replaceListFile(path, bytes);
}

}  // namespace lists
