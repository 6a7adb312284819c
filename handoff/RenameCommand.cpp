// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <exception>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "app/modules/modPath.h"
#include "handoff/FileCommands.h"
#include "handoff/LoadedList.h"
#include "lists/ListText.h"
#include "lists/Names.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/ResumeNext.h"
#include "platform/file/Move.h"
#include "platform/file/ReadWhole.h"
#include "platform/file/Replacement.h"
#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

struct SelectedFile {
    int row;
    QString path;
};

std::vector<SelectedFile> selectedFiles(const ports::FileList& list) {
    std::vector<SelectedFile> files;
    const int rows = list.rowCount();
    for (int row = 1; row <= rows; ++row)
        if (list.rowSelected(row)) files.push_back({row, list.entryPath(row - 1)});
    return files;
}

bool isRenamingWanted(ports::Boxes& boxes, const QString& path) {
    return boxes.askYesNo(u"Would you like to rename this selected file: \r\n"_s + path +
                              u"\r\nthen automatically update the loaded playlist?  "_s,
                          u"Rename file?"_s);
}

QByteArray readWhole(const QString& path) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    std::error_code reason;
    if (auto bytes = platform::file::readWhole(platform::toPath(path), most, reason)) return *bytes;
    throw platform::Error(reason.message());
}

/// The scratch file is about to be overwritten.
void refuseAsScratch(const std::filesystem::path& scratch, const QString& needed) {
    if (platform::file::isSameFile(scratch, platform::toPath(needed)))
        throw platform::Error("The playlist could not be revised: “" + needed.toStdString() +
                              "” has the name of the file it is revised through.");
}

lists::ListText readPlaylist(const QString& path) {
    const QString folder = modPath::GetPathPart(path);
    try {
        return lists::ListText(readWhole(path), [&folder](const QString& line) {
            return lists::isFile(lists::resolveListed(line, folder, lists::isFile));
        });
    } catch (const platform::Error& reason) {
        throw platform::Error("The playlist “" + path.toStdString() +
                              "” could not be read: " + reason.what() + ".");
    }
}

/// The list as it will be, made before anything is renamed: a name that the list cannot hold is
/// refused then. Nothing where the list cannot be read, which is an error only once its turn comes.
std::optional<QByteArray> revisedInAdvance(const QString& playlist, const QString& oldPath,
                                           const QString& newPath) {
    std::optional<lists::ListText> list;
    platform::resumeNext([&] { list = readPlaylist(playlist); });
    if (!list) return std::nullopt;
    list->replaceLine(oldPath, newPath);
    return list->bytes();
}

/// The playlist is replaced through a scratch file beside the renamed one, which is kept where that
/// fails. A symbolic link stays one; the file behind it keeps its owner and mode.
void revisePlaylist(const QString& playlist, const QString& folder,
                    const std::optional<QByteArray>& inAdvance, const QString& newPath) {
    const std::filesystem::path scratch = platform::toPath(folder + u"mytemp.dat"_s);
    refuseAsScratch(scratch, playlist);
    refuseAsScratch(scratch, newPath);
    const QByteArray revised = inAdvance ? *inAdvance : readPlaylist(playlist).bytes();
    const auto bytes = std::as_bytes(std::span(revised));
    platform::file::replaceWith(scratch, bytes);
    platform::file::replaceWith(platform::toPath(playlist), bytes);
    std::error_code ignored;
    std::filesystem::remove(scratch, ignored);
}

/// Takes a step that comes after the renaming; its error says what is done already.
template <class Step>
void afterRenaming(const SelectedFile& file, const QString& newPath, Step&& step) {
    try {
        step();
    } catch (const std::exception& error) {
        throw platform::Error("“" + file.path.toStdString() + "” was renamed to “" +
                              newPath.toStdString() +
                              "”, but its playlist was not revised: " + error.what());
    }
}

bool isListWithFile(const QString& caption) {
    return !caption.isEmpty() && caption != u"Playlist loaded: New list not yet saved."_s;
}

void renameTo(ports::Boxes& boxes, LoadedList& loaded, const SelectedFile& file,
              const QString& name) {
    const QString folder = modPath::GetPathPart(file.path);
    const QString newPath = folder + name + file.path.right(4);
    boxes.showMessage(file.path + u"    "_s + newPath);
    const QString caption = loaded.caption();
    const bool hasList = isListWithFile(caption);
    const auto revised = hasList ? revisedInAdvance(caption, file.path, newPath) : std::nullopt;
    platform::file::rename(platform::toPath(file.path), platform::toPath(newPath));
    if (!hasList) return loaded.setTitleCell(file.row, name);
    afterRenaming(file, newPath, [&] { revisePlaylist(caption, folder, revised, newPath); });
    boxes.showMessage(u"The file has been renamed as: "_s + newPath +
                      u" and the playlist revised to reflect this change.\r\n\r\n"
                      u"TIP:  if this is an MP3 file it is also advisable to edit the 'Title' ID "
                      u"tag to reflect this new file name then reload the playlist!"_s);
    loaded.reload();
}

}  // namespace

void renameSelectedFiles(const ports::Ports& ports, LoadedList& loaded) {
    for (const SelectedFile& file : selectedFiles(ports.list)) {
        ports.events.yield();
        if (ports.list.entryPath(file.row - 1) != file.path) continue;
        if (!isRenamingWanted(ports.boxes, file.path)) continue;
        const QString name = ports.boxes.inputBox(
            u"Please input new file name without the extension."_s, u"Rename file..."_s);
        if (!name.isEmpty()) renameTo(ports.boxes, loaded, file, name);
    }
}

}  // namespace handoff
