// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/Application.h"

#include <QSettings>

#include "platform/Program.h"
#include "widgets/Dispatch.h"
#include "widgets/MsgBox.h"

namespace widgets {
void showUnhandled(const QString& sentence) {
    // The box needs the event loop, and the handler that failed may lie in the middle of one.
    QMetaObject::invokeMethod(
        qApp, guarded([sentence] { msgBox(sentence, MsgButtons::Ok, MsgIcon::Critical); }),
        Qt::QueuedConnection);
}

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    setApplicationName(platform::programName());
    setDesktopFileName(platform::programName());
    setApplicationVersion(platform::programVersion());
    // Qt's file dialogs keep their size and their history in a file of the user's that is no
    // business of ours (QtProject.conf): here they have it for as long as the program runs.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings_.path());
}

QString Application::title() {
    return platform::programTitle();
}

bool Application::notify(QObject* receiver, QEvent* event) {
    bool handled = true;
    dispatch([&] { handled = QApplication::notify(receiver, event); });
    return handled;
}

}  // namespace widgets
