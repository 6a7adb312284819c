// SPDX-License-Identifier: GPL-3.0-or-later
#include <exception>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/CommandPorts.h"
#include "cli/Inputs.h"
#include "cli/Invocation.h"
#include "cli/commands/Commands.h"
#include "handoff/CopyFiles.h"
#include "handoff/PickedFolder.h"
#include "lists/ListReader.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/file/FileId.h"
#include "ports/Ports.h"

namespace cli {
namespace {

struct CopyArguments {
    std::string list;
    std::string folder;
    bool player = false;
};

/// What each copy's name follows: the folder as typed, or with a separator at its end.
QString targetOf(const CopyArguments& arguments) {
    const QString typed = absolutePath(arguments.folder);
    const QString folder = handoff::pickedFolder(typed);
    const bool separated = folder.endsWith(platform::nativeSeparator());
    const bool wanted = !arguments.player || typed.endsWith(platform::nativeSeparator());
    return wanted && !separated ? folder + platform::nativeSeparator() : folder;
}

/// The bar counts the file in hand as one after those that are done.
class CopyBar : public ReportBar {
  public:
    using ReportBar::ReportBar;
    void setFraction(double fraction) override { ReportBar::setFraction(fraction - 1); }
};

QStringList pathsOf(const QString& list) {
    QStringList paths;
    for (const lists::ListedEntry& entry : lists::readListFile(list)) paths += entry.path;
    return paths;
}

/// The copying as the window does it, with a line for every file.
class Copying {
  public:
    Copying(const QStringList& files, const QString& target, Report& report)
        : files_(files), target_(target), report_(report), bar_(report) {}

    void run(bool withList) {
        report_.begin(static_cast<std::size_t>(files_.rowCount()));
        try {
            if (!copyAll(withList) && done_ < files_.rowCount())
                throw platform::Error("The copying was interrupted.");
        } catch (const std::exception& error) {
            report_.failed(inHand(), QString::fromUtf8(error.what()));
        }
        report_.end();
    }

  private:
    bool copyAll(bool withList) {
        const auto copied = [this](int entry) { tellCopied(entry); };
        const ports::Ports ports{files_, bar_, boxes_, events_};
        return withList ? handoff::copyProject(ports, target_, copied)
                        : handoff::copyFiles(ports, target_, copied);
    }

    void tellCopied(int entry) {
        report_.done(files_.entryPath(entry), target_ + files_.entryName(entry));
        done_ = entry + 1;
        bar_.begin(static_cast<std::size_t>(done_));
    }

    /// The list comes after all files.
    QString inHand() const {
        return done_ < files_.rowCount() ? files_.entryPath(done_)
                                         : target_ + handoff::projectListName;
    }

    ListedFiles files_;
    const QString target_;
    Report& report_;
    CopyBar bar_;
    NoBoxes boxes_;
    Interrupt events_;
    int done_ = 0;
};

/// The new list must not take the place of the one that is being copied.
void refuseOwnFolder(const QString& copied, const QString& target) {
    const QString path = target + handoff::projectListName;
    if (platform::file::isSameFile(platform::toPath(path), platform::toPath(copied)))
        throw platform::Error("The playlist \"" + path.toStdString() +
                              "\" cannot be copied into its own folder.");
}

void copy(const CopyArguments& arguments, Invocation& invocation) {
    const QString copied = absolutePath(arguments.list);
    const QStringList files = pathsOf(copied);
    const QString target = targetOf(arguments);
    if (!arguments.player) refuseOwnFolder(copied, target);
    Copying(files, target, invocation.report()).run(!arguments.player);
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
