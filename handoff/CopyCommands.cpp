// SPDX-License-Identifier: GPL-3.0-or-later
#include <exception>
#include <functional>

#include "handoff/CopyFiles.h"
#include "handoff/FileCommands.h"
#include "handoff/LoadedList.h"
#include "platform/Paths.h"
#include "ports/Boxes.h"
#include "ports/ProgressBar.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

void orFixedMessage(ports::Boxes& boxes, const std::function<void()>& command) {
    try {
        command();
    } catch (const std::exception&) {
        boxes.showMessage(u"ERROR: most likely you are trying to copy file(s) to the same path."_s);
    }
}

}  // namespace

void copyToProjectFolder(const ports::Ports& ports, LoadedList& loaded) {
    orFixedMessage(ports.boxes, [&] {
        QString target = ports.boxes.browseForFolder(u"Select target folder for project..."_s);
        if (target.isEmpty()) return;
        target += platform::nativeSeparator();
        if (!copyProject(ports, target)) return;
        loaded.replaceBy(target + projectListName);
        ports.boxes.showMessage(
            u"Playlist files have been copied to the target folder: "
            u"play-list created and reloaded."_s);
        ports.bar.setShown(false);
        loaded.setCaption(target + projectListName);
    });
}

void copyToPlayer(const ports::Ports& ports) {
    orFixedMessage(ports.boxes, [&] {
        const QString target =
            ports.boxes.browseForFolder(u"Select target folder for file transfer..."_s);
        if (target.isEmpty()) return;
        if (!copyFiles(ports, target)) return;
        ports.boxes.showMessage(u"Playlist files have been copied to the target."_s);
        ports.bar.setShown(false);
    });
}

}  // namespace handoff
