// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTimer>

#include "app/Skin.h"
#include "app/frmMain.h"
#include "widgets/Application.h"

int main(int argc, char** argv) {
    widgets::Application application(argc, argv);
    app::applySkin(application);
    app::frmMain window;
    // Other windows may still be open; with the main window all ends.
    QObject::connect(
        &window, &app::frmMain::closed, &application, [] { QCoreApplication::exit(0); },
        Qt::QueuedConnection);
    window.show();
    const QStringList paths = QCoreApplication::arguments().mid(1);
    QTimer::singleShot(0, &window, [&window, paths] { window.openPaths(paths); });
    return application.exec();
}
