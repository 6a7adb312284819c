// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "platform/Paths.h"
#include "tests/support/Fixtures.h"
#include "tests/support/TempFolder.h"

namespace support {

/// The program under test with these arguments, run to its end.
inline Outcome cli(const QStringList& arguments) {
    return run(QStringLiteral(TRACKSMITH_CLI), arguments);
}

/// The lines of a --json run.
inline QList<QJsonObject> objects(const Outcome& outcome) {
    QList<QJsonObject> found;
    for (const QByteArray& line : outcome.out.split('\n'))
        if (!line.isEmpty()) found << QJsonDocument::fromJson(line).object();
    return found;
}

/// A copy of a fixture in a folder.
inline QString copyOf(const char* fixtureName, const TempFolder& folder, const QString& name) {
    return platform::toQString(scratchCopy(fixtureName, folder.path(), name.toStdString()));
}

}  // namespace support
