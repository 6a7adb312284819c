// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/Application.h"

#include <exception>

#include "widgets/MsgBox.h"

namespace widgets {
namespace {

void showUnhandled(const QString& sentence) {
    // The box needs the event loop, and the handler that failed may lie in the middle of one.
    QMetaObject::invokeMethod(
        qApp, [sentence] { msgBox(sentence, MsgButtons::Ok, MsgIcon::Critical); },
        Qt::QueuedConnection);
}

}  // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(QStringLiteral("tracksmith"));
    setDesktopFileName(QStringLiteral("tracksmith"));
    setApplicationVersion(QStringLiteral("5.8"));
}

QString Application::title() {
    return QStringLiteral("Tracksmith");
}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        showUnhandled(QString::fromUtf8(error.what()));
    } catch (...) {
        showUnhandled(QStringLiteral("The command failed for an unknown reason."));
    }
    return true;
}

}  // namespace widgets
