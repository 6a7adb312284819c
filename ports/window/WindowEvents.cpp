// SPDX-License-Identifier: GPL-3.0-or-later
#include "ports/window/WindowEvents.h"

#include <QCoreApplication>

namespace ports {

void WindowEvents::yield() {
    QCoreApplication::processEvents();
}

void WindowEvents::repaint() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace ports
