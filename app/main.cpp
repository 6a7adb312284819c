// SPDX-License-Identifier: GPL-3.0-or-later
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <QTimer>

#include "app/Skin.h"
#include "app/frmMain.h"
#include "platform/Interrupt.h"
#include "platform/Paths.h"
#include "platform/Program.h"
#include "widgets/Application.h"
#include "widgets/Dispatch.h"

namespace {

/// Answers what needs no window; true where that was all.
bool answered(int argc, char** argv) {
    if (argc < 2) return false;
    const auto asked = [&](const char* option) { return std::strcmp(argv[1], option) == 0; };
    if (asked("--version"))
        std::printf("%s\n", qUtf8Printable(platform::programVersion()));
    else if (asked("--help") || asked("-h"))
        std::puts(
            "Usage: tracksmith [LIST|FILE|FOLDER...]\n"
            "Opens the playlist window. A playlist (m3u, m3u8, pls) is loaded; sound files and\n"
            "folders of them are added. For work without a window see tracksmith-cli --help.");
    else
        return false;
    return true;
}

/// What Qt cannot go on after is a sentence on the terminal and not a crash.
void endWithSentence(QtMsgType type, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "tracksmith: %s\n", qUtf8Printable(message));
    if (type != QtFatalMsg) return;
    std::fputs(
        "tracksmith: no window can be opened here. Start it in a desktop session, or use "
        "tracksmith-cli.\n",
        stderr);
    std::_Exit(EXIT_FAILURE);
}

/// The arguments that Qt has left, whatever the bytes of their names.
QStringList pathsIn(int argc, char** argv) {
#ifdef Q_OS_WIN
    Q_UNUSED(argc)
    Q_UNUSED(argv)
    return QCoreApplication::arguments().mid(1);
#else
    QStringList paths;
    for (int i = 1; i < argc; ++i) paths += platform::toQString(std::filesystem::path(argv[i]));
    return paths;
#endif
}

}  // namespace

int main(int argc, char** argv) {
    if (answered(argc, argv)) return EXIT_SUCCESS;
    const QtMessageHandler usual = qInstallMessageHandler(endWithSentence);
    widgets::Application application(argc, argv);
    qInstallMessageHandler(usual);
    app::applySkin(application);
    app::frmMain window;
    // Other windows may still be open; with the main window all ends.
    QObject::connect(&window, &app::frmMain::closed, &application,
                     widgets::guarded([] { QCoreApplication::exit(0); }), Qt::QueuedConnection);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window,
                     widgets::guarded(&window, &app::frmMain::askNothingMore),
                     Qt::DirectConnection);
    window.show();
    const QStringList paths = pathsIn(argc, argv);
    QTimer::singleShot(0, &window, widgets::guarded([&window, paths] { window.openPaths(paths); }));
    platform::watchForInterrupt();
    QTimer signalWatch;
    QObject::connect(&signalWatch, &QTimer::timeout, &window, widgets::guarded([&window] {
        if (!platform::interrupted()) return;
        window.askNothingMore();
        window.close();
    }));
    signalWatch.start(std::chrono::milliseconds(250));
    return application.exec();
}
