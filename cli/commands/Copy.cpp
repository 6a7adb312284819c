// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/Copy.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <QDir>
#include <QFileInfo>

#include "cli/Invocation.h"
#include "handoff/CopyFiles.h"
#include "handoff/PickedFolder.h"
#include "lists/LineFile.h"
#include "lists/ListReader.h"
#include "platform/Error.h"
#include "platform/Interrupt.h"
#include "platform/Paths.h"

namespace cli {
namespace {

struct CopyArguments {
    std::string list;
    std::string folder;
    bool player = false;
};

/// What each copy's name follows: the folder as typed, or with a separator at its end.
QString targetOf(const CopyArguments& arguments) {
    const QString typed = QString::fromStdString(arguments.folder);
    const QString folder = handoff::pickedFolder(QFileInfo(typed).absoluteFilePath());
    const bool separated = folder.endsWith(platform::nativeSeparator());
    const bool wanted = !arguments.player || QDir::fromNativeSeparators(typed).endsWith(u'/');
    return wanted && !separated ? folder + platform::nativeSeparator() : folder;
}

void copyOne(const handoff::CopyItem& item, const QString& target, std::size_t number,
             Report& report) {
    if (platform::interrupted()) throw platform::Error("The copying was interrupted.");
    handoff::copyWhileYielding(item, target,
                               [&](double fraction) { report.progress(number, fraction); });
    report.done(item.source, target + item.name);
}

void copyAll(const std::vector<lists::ListedEntry>& entries, const QString& target,
             std::optional<lists::LineFile>& list, Report& report) {
    std::size_t number = 0;
    for (const lists::ListedEntry& entry : entries) {
        const handoff::CopyItem item{entry.path, lists::nameOf(entry.path)};
        try {
            copyOne(item, target, number++, report);
            if (list) list->writeLine(handoff::projectListLine(item.name));
        } catch (const std::exception& error) {
            report.failed(item.source, QString::fromUtf8(error.what()));
            return;
        }
    }
}

/// Where the new list goes. It must not take the place of the list that is being copied.
QString newListFor(const QString& copied, const QString& target) {
    const QString path = target + handoff::projectListName;
    if (QFileInfo::exists(path) && QFileInfo(path) == QFileInfo(copied)) {
        throw platform::Error("The playlist \"" + path.toStdString() +
                              "\" cannot be copied into its own folder.");
    }
    return path;
}

void copy(const CopyArguments& arguments, Invocation& invocation) {
    const QString copied = QString::fromStdString(arguments.list);
    const auto entries = lists::readListFile(copied);
    const QString target = targetOf(arguments);
    std::optional<lists::LineFile> list;
    if (!arguments.player) list.emplace(newListFor(copied, target));
    Report& report = invocation.report();
    report.begin(entries.size());
    copyAll(entries, target, list, report);
    report.end();
}

}  // namespace

void addCopyCommand(CLI::App& app, Invocation& invocation) {
    const auto arguments = std::make_shared<CopyArguments>();
    CLI::App* command = app.add_subcommand("copy", "Copies the files of a playlist into a folder");
    command->add_option("list", arguments->list, "The playlist")->required()->type_name("LIST");
    command->add_option("--to", arguments->folder, "An existing folder")
        ->required()
        ->check(CLI::ExistingDirectory)
        ->type_name("DIR");
    command->add_flag("--player", arguments->player,
                      "For a portable player: no list, and each copy is named DIR and the file's "
                      "name put together as they stand (so end DIR with a separator)");
    command->callback([arguments, &invocation] { copy(*arguments, invocation); });
}

}  // namespace cli
