// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/StartProgram.h"

#include <QProcess>

#include "platform/Error.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace platform {

void startProgram(const QString& path) {
    QProcess process;
    process.setProgram(path);
    // The program may outlive the terminal this one was started from.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
#ifdef Q_OS_WIN
    process.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments* arguments) {
        arguments->startupInfo->dwFlags |= STARTF_USESHOWWINDOW;
        arguments->startupInfo->wShowWindow = SW_SHOWNORMAL;
    });
#endif
    if (!process.startDetached())
        throw Error("“" + path.toStdString() +
                    "” could not be started: " + process.errorString().toStdString() + ".");
}

}  // namespace platform
