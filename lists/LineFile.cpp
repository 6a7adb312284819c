// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/LineFile.h"

#include <span>

#include <QByteArray>

#include "lists/ListText.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/Replacement.h"

namespace lists {
namespace {

platform::Error unwritable(const QString& path, const QString& reason) {
    return platform::Error("“" + path.toStdString() +
                           "” could not be written: " + reason.toStdString() + ".");
}

QByteArray lineOf(const QString& path, const QString& text) {
    try {
        return encodeLine(text);
    } catch (const platform::Error& reason) {
        throw unwritable(path, QString::fromUtf8(reason.what()));
    }
}

}  // namespace

LineFile::LineFile(const QString& path) : path_(path) {
    std::error_code error;
    check(file_.openForWriting(platform::toPath(path), error), error);
}

void LineFile::writeLine(const QString& text) {
    const QByteArray line = lineOf(path_, text);
    std::error_code error;
    check(file_.writeAt(written_, std::as_bytes(std::span(line)), error), error);
    written_ += line.size();
}

void LineFile::check(bool done, const std::error_code& error) const {
    if (!done) throw unwritable(path_, QString::fromStdString(error.message()));
}

void writeLines(const QString& path, const QStringList& lines) {
    QByteArray bytes;
    for (const QString& line : lines) bytes += lineOf(path, line);
    platform::file::replaceWith(platform::toPath(path), std::as_bytes(std::span(bytes)));
}

}  // namespace lists
