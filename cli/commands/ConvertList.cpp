// SPDX-License-Identifier: GPL-3.0-or-later
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <QFileInfo>

#include "audio/tags/TrackInfo.h"
#include "cli/Inputs.h"
#include "cli/Invocation.h"
#include "cli/commands/Commands.h"
#include "lists/ListReader.h"
#include "lists/ListWriter.h"
#include "platform/Paths.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

struct ConvertArguments {
    std::string from;
    std::string to;
};

QString extensionOf(const std::string& path) {
    return QFileInfo(QString::fromStdString(path)).suffix().toLower();
}

std::string refuseOtherExtensions(const std::string& path) {
    const QString extension = extensionOf(path);
    if (extension == u"m3u"_s || extension == u"m3u8"_s || extension == u"pls"_s) return {};
    return path + " has no playlist's extension (m3u, m3u8 or pls).";
}

/// What the list says of a file, and where it says nothing, what the file does.
lists::ListedEntry complete(lists::ListedEntry entry) {
    if (lists::isUrl(entry.path) || (!entry.title.isEmpty() && entry.durationMs >= 0)) return entry;
    const audio::tags::TrackInfo info = audio::tags::readTrackInfo(platform::toPath(entry.path));
    if (entry.title.isEmpty()) entry.title = QString::fromStdString(info.title);
    if (entry.durationMs < 0) entry.durationMs = info.durationMs;
    return entry;
}

QByteArray written(std::vector<lists::ListedEntry> entries, bool asPls) {
    if (!asPls) return lists::writeM3u(entries);
    for (lists::ListedEntry& entry : entries) entry = complete(std::move(entry));
    return lists::writePls(entries);
}

void convertList(const ConvertArguments& arguments, Invocation& invocation) {
    const QString from = absolutePath(arguments.from);
    const QString to = absolutePath(arguments.to);
    const bool asPls = extensionOf(arguments.to) == u"pls"_s;
    lists::replaceListFile(to, written(lists::readListFile(from), asPls));
    invocation.report().done(from, to);
}

}  // namespace

void addConvertListCommand(CLI::App& app, Invocation& invocation) {
    const auto arguments = std::make_shared<ConvertArguments>();
    CLI::App* command =
        app.add_subcommand("convert-list", "Writes a playlist in another format (M3U, PLS)");
    command->add_option("in", arguments->from, "The playlist to read")->required()->type_name("IN");
    command->add_option("out", arguments->to, "The playlist to write; its extension says how")
        ->required()
        ->check(refuseOtherExtensions)
        ->type_name("OUT");
    command->callback([arguments, &invocation] { convertList(*arguments, invocation); });
}

}  // namespace cli
