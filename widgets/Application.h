// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QTemporaryDir>

namespace widgets {

/// The application object. What escapes an event handler that is no dispatched command ends as one
/// does (see Dispatch.h).
class Application : public QApplication {
    Q_OBJECT
  public:
    /// Sets name and titles; argc must outlive the object, as QApplication asks.
    Application(int& argc, char** argv);

    /// The program's name as people know it. Not the application's display name: that would be put
    /// behind the title of every window.
    static QString title();

    bool notify(QObject* receiver, QEvent* event) override;

  private:
    QTemporaryDir settings_;  // of Qt's own dialogs; gone with the program
};

}  // namespace widgets
