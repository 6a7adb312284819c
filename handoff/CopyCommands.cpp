// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/CopyCommands.h"

#include <exception>
#include <functional>
#include <optional>

#include "handoff/CopyFiles.h"
#include "handoff/LoadedList.h"
#include "lists/LineFile.h"
#include "lists/ListText.h"
#include "lists/ListWriter.h"
#include "lists/Names.h"
#include "platform/Paths.h"
#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

/// Copies every entry and moves the bar; `copied` is called after each file. Returns false where
/// the window was closed meanwhile.
bool copyEntries(const ports::Ports& ports, const QString& target,
                 const std::function<void(const QString& name)>& copied) {
    const int rows = ports.list.rowCount();
    ports.bar.setMaximum(rows - 1);
    ports.bar.setValue(0);
    ports.bar.setShown(true);
    for (int entry = 0; entry < rows; ++entry) {
        const CopyItem item{ports.list.entryPath(entry), ports.list.entryName(entry)};
        if (!copyWhileYielding(item, target, [&](double done) { ports.bar.setFraction(1 + done); }))
            return false;
        ports.events.yield();
        if (ports.events.closing()) return false;
        copied(item.name);
        ports.bar.setValue(entry);
    }
    ports.events.yield();
    return true;
}

// A list that is there, perhaps the one that is copied, gives way only to a whole one.
bool copyWithList(const ports::Ports& ports, const QString& target) {
    const QString path = target + projectListName;
    std::optional<lists::LineFile> growing;
    if (!lists::isFile(path)) growing.emplace(path);
    QByteArray lines;
    const bool all = copyEntries(ports, target, [&](const QString& name) {
        const QString line = projectListLine(name);
        lines += lists::encodeLine(line);
        if (growing) growing->writeLine(line);
    });
    if (all && !growing) lists::replaceListFile(path, lines);
    return all;
}

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
        if (!copyWithList(ports, target)) return;
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
        if (!copyEntries(ports, target, [](const QString&) {})) return;
        ports.boxes.showMessage(u"Playlist files have been copied to the target."_s);
        ports.bar.setShown(false);
    });
}

}  // namespace handoff
