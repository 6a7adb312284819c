// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/CopyCommands.h"

#include <exception>
#include <functional>

#include "handoff/CopyFiles.h"
#include "handoff/Host.h"
#include "lists/LineFile.h"
#include "platform/Paths.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

/// Copies every entry and moves the bar; `copied` is called after each file. Returns false where
/// the window was closed meanwhile.
bool copyEntries(Host& host, const QString& target,
                 const std::function<void(const QString& name)>& copied) {
    const int rows = host.rowCount();
    host.setBarMaximum(rows - 1);
    host.setBarValue(0);
    host.setBarVisible(true);
    for (int entry = 0; entry < rows; ++entry) {
        const CopyItem item{host.entryPath(entry), host.entryName(entry)};
        if (!copyWhileYielding(item, target, [&](double done) { host.setFileProgress(done); }))
            return false;
        host.yield();
        if (host.closing()) return false;
        copied(item.name);
        host.setBarValue(entry);
        host.setFileProgress(-1);
    }
    host.yield();
    return true;
}

bool copyWithList(Host& host, const QString& target) {
    lists::LineFile list(target + projectListName);
    return copyEntries(host, target,
                       [&](const QString& name) { list.writeLine(projectListLine(name)); });
}

void orFixedMessage(Host& host, const std::function<void()>& command) {
    try {
        command();
    } catch (const std::exception&) {
        host.showMessage(u"ERROR: most likely you are trying to copy file(s) to the same path."_s);
    }
}

}  // namespace

void copyToProjectFolder(Host& host) {
    orFixedMessage(host, [&host] {
        QString target = host.browseForFolder(u"Select target folder for project..."_s);
        if (target.isEmpty()) return;
        target += platform::nativeSeparator();
        if (!copyWithList(host, target)) return;
        host.clearRows();
        host.loadPlaylist(target + projectListName);
        host.fillPlayListView();
        host.showMessage(
            u"Playlist files have been copied to the target folder: "
            u"play-list created and reloaded."_s);
        host.setBarVisible(false);
        host.setPlaylistCaption(target + projectListName);
    });
}

void copyToPlayer(Host& host) {
    orFixedMessage(host, [&host] {
        const QString target = host.browseForFolder(u"Select target folder for file transfer..."_s);
        if (target.isEmpty()) return;
        if (!copyEntries(host, target, [](const QString&) {})) return;
        host.showMessage(u"Playlist files have been copied to the target."_s);
        host.setBarVisible(false);
    });
}

}  // namespace handoff
