// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/LineFile.h"

#include <QByteArray>
#include <QStringEncoder>

#include "platform/Error.h"

namespace handoff {
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
    QStringEncoder utf8(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray line = utf8.encode(text + QStringLiteral("\r\n"));
    if (utf8.hasError() || text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r')))
        throw unwritable(file_.fileName(),
                         QStringLiteral("“%1” cannot be put into a text file").arg(text));
    if (file_.write(line) != line.size()) throw unwritable(file_.fileName(), file_.errorString());
}

void writeLines(const QString& path, const QStringList& lines) {
    LineFile file(path);
    for (const QString& line : lines) file.writeLine(line);
}

}  // namespace handoff
