// SPDX-License-Identifier: GPL-3.0-or-later
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "audio/read/Decoder.h"
#include "audio/tags/TrackInfo.h"
#include "cli/Inputs.h"
#include "cli/Invocation.h"
#include "cli/commands/Commands.h"
#include "lists/ListReader.h"
#include "platform/Paths.h"
#include "player/engine/PlaylistStore.h"
#include "playlist/Totals.h"

using namespace Qt::Literals::StringLiterals;

namespace cli {
namespace {

struct Row {
    QString number;
    QString duration;
    QString title;
    QString path;
};

Row rowOf(const QString& path, int number) {
    const audio::tags::TrackInfo info = audio::tags::readTrackInfo(platform::toPath(path));
    const QString title = QString::fromStdString(info.title);
    return {QString::number(number), player::formatDuration(info.durationMs),
            title.isEmpty() ? lists::nameOf(path) : title, path};
}

// What keeps the entry from being played; empty where nothing does. A file whose duration could be
// read is not opened for it.
QString reasonAgainst(const QString& path, const Row& row) {
    if (lists::isUrl(path) || !row.duration.isEmpty()) return {};
    try {
        const audio::read::Decoder decoder(platform::toPath(path));
        return {};
    } catch (const std::exception& failure) {
        return QString::fromUtf8(failure.what());
    }
}

void showRow(const Row& row, Report& report) {
    const bool columns = report.style() == Report::Style::Terminal;
    const QString text =
        columns ? u"%1  %2  %3  %4"_s.arg(row.number, 5)
                      .arg(row.duration, 7)
                      .arg(row.title, -40)
                      .arg(row.path)
                : QStringList{row.number, row.duration, row.title, row.path}.join(u'\t');
    report.line(text, {{u"number"_s, row.number.toInt()},
                       {u"duration"_s, row.duration},
                       {u"title"_s, row.title},
                       {u"path"_s, row.path}});
}

void showTotals(const std::vector<QString>& durations, Report& report) {
    const playlist::Totals totals = playlist::totals(durations);
    report.line(totals.durationText, {{u"totalDuration"_s, totals.durationText}});
    report.line(totals.countText, {{u"fileCount"_s, totals.countText}});
}

void show(const std::vector<std::string>& arguments, Invocation& invocation) {
    Report& report = invocation.report();
    std::vector<QString> durations;
    for (const QString& path : namedFiles(arguments, report)) {
        const Row row = rowOf(path, static_cast<int>(durations.size()) + 1);
        durations.push_back(row.duration);
        showRow(row, report);
        if (const QString reason = reasonAgainst(path, row); !reason.isEmpty())
            report.failed(path, reason);
    }
    showTotals(durations, report);
}

}  // namespace

void addShowCommand(CLI::App& app, Invocation& invocation) {
    const auto arguments = std::make_shared<std::vector<std::string>>();
    CLI::App* command = app.add_subcommand("show", "Lists entries and their totals");
    command->add_option("files", *arguments, "Playlists and sound files")
        ->required()
        ->type_name("LIST|FILE");
    command->callback([arguments, &invocation] { show(*arguments, invocation); });
}

}  // namespace cli
