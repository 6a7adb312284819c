// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/LineFile.h"

#include <QByteArray>

#include "lists/ListText.h"
#include "platform/Error.h"

namespace lists {
namespace {

platform::Error unwritable(const QString& path, const QString& reason) {
    return platform::Error("“" + path.toStdString() +
                           "” could not be written: " + reason.toStdString() + ".");
}

}  // namespace

LineFile::LineFile(const QString& path) : file_(path) {
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw unwritable(path, file_.errorString());
}

void LineFile::writeLine(const QString& text) {
    QByteArray line;
    try {
        line = encodeLine(text);
    } catch (const platform::Error& reason) {
        throw unwritable(file_.fileName(), QString::fromUtf8(reason.what()));
    }
    if (file_.write(line) != line.size()) throw unwritable(file_.fileName(), file_.errorString());
}

void writeLines(const QString& path, const QStringList& lines) {
    LineFile file(path);
    for (const QString& line : lines) file.writeLine(line);
}

}  // namespace lists
