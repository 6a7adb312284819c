// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCoreApplication>

#include "cli/CommandLine.h"
#include "platform/Interrupt.h"
#include "platform/Program.h"

int main(int argc, char** argv) {
    platform::watchForInterrupt();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(platform::programName());
    return cli::runCommandLine(argc, argv);
}
