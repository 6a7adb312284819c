// SPDX-License-Identifier: GPL-3.0-or-later
// The command map of the main window: which handler a button or menu item forwards to.
#include <QAbstractButton>
#include <QAction>

#include "app/frmMain.h"
#include "ui_frmMain.h"

namespace app {

// A handler bears its control's name: the map cannot forward a click to another control's handler.
#define CLICK(control) \
    { #control, #control "_Click", &frmMain::control##_Click }

const std::vector<frmMain::Command>& frmMain::commands() {
    static const std::vector<Command> map = {
        // buttons
        CLICK(Button7), CLICK(Button1),
        // Options menu: the list
        // Options menu: effects
        // Options menu: files
        // Burn to CD menu
    };
    return map;
}

#undef CLICK

void frmMain::connectCommands() {
    for (const Command& command : commands()) {
        const QString name = QString::fromLatin1(command.control);
        if (auto* button = findChild<QAbstractButton*>(name)) {
            connect(button, &QAbstractButton::clicked, this, command.handler);
        } else if (auto* item = findChild<QAction*>(name)) {
            connect(item, &QAction::triggered, this, command.handler);
        } else {
            qFatal("The command map names a control that the window lacks: %s", command.control);
        }
    }
}

}  // namespace app
