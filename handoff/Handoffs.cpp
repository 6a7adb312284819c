// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/Handoffs.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>

#include "app/modules/modMain.h"
#include "handoff/HandoffFiles.h"
#include "handoff/LoadedList.h"
#include "lists/ListText.h"
#include "lists/ListWriter.h"
#include "platform/Paths.h"
#include "platform/ResumeNext.h"
#include "platform/StartProgram.h"
#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

/// Minutes of sound that still go on an audio CD without a question.
constexpr std::int16_t audioCdMinutes = 78;

bool fitsOnAudioCd(ports::Boxes& boxes, std::int16_t totalMinutes) {
    if (totalMinutes <= audioCdMinutes) return true;
    return boxes.warnOkCancel(
        u"You are either over, or dangerously close, to the max data\r\n"
        u"(normally 80 mins) allowed to write to an Audio CD disc.\r\n"
        u"\r\n"
        u"Proceed?  "_s,
        u"CAUTION!"_s);
}

void handOverPlaylist(ports::Boxes& boxes, LoadedList& loaded, std::int16_t player,
                      const QString& file, const QString& companion) {
    std::int32_t failed = 0;
    platform::resumeNext([&] { failed = loaded.saveAsM3u(player, file); });
    if (failed)
        boxes.showMessage(u"Error saving playlist"_s);
    else
        LaunchCompanion(companion);
}

bool isMp3(const QString& path) {
    const QString ending = path.right(3);
    return ending == u"mp3"_s || ending == u"MP3"_s;
}

/// Row 0, which there is not, counts as selected; the last row is not looked at.
void countSelected(const ports::Ports& ports) {
    int count = modMain::SelectedCount;
    for (int row = 0; row < ports.list.rowCount(); ++row)
        if (row == 0 || ports.list.rowSelected(row)) ++count;
    constexpr int most = std::numeric_limits<std::int16_t>::max();
    modMain::SelectedCount = static_cast<std::int16_t>(std::min(count, most));
    ports.bar.setMaximum(modMain::SelectedCount + 1);
}

/// A name that no line can hold is left out.
QByteArray linesOfSelectedMp3s(const ports::Ports& ports) {
    QByteArray lines;
    const int rows = ports.list.rowCount();
    for (int row = 1; row <= rows; ++row) {
        if (!ports.list.rowSelected(row)) continue;
        ports.events.yield();
        const QString path = ports.list.entryPath(row - 1);
        if (isMp3(path)) platform::resumeNext([&] { lines += lists::encodeLine(path); });
    }
    return lines;
}

// Better no list than the one of another time.
void replaceOrRemove(const QString& path, const QByteArray& lines) {
    try {
        lists::replaceListFile(path, lines);
    } catch (const std::exception&) {
        std::error_code ignored;
        std::filesystem::remove(platform::toPath(path), ignored);
    }
}

int firstSelectedRow(const ports::FileList& list) {
    for (int row = 1; row <= list.rowCount(); ++row)
        if (list.rowSelected(row)) return row;
    return 0;
}

}  // namespace

void audioCdWriter(ports::Boxes& boxes, LoadedList& loaded, std::int16_t totalMinutes) {
    if (boxes.askYesNo(u"What to auto insert the loaded files (playlist) into the Audio Writer?"_s,
                       u"What do you want to do?"_s))
        AudioCdHandoff(boxes, loaded, totalMinutes, 0);
    else
        LaunchCompanion(u"\\Fornax\\Fornax_Audio.EXE"_s);
}

void dataCdWriter() {
    LaunchCompanion(u"\\Fornax\\Fornax_Data.EXE"_s);
}

void openInEditor(const ports::FileList& list) {
    const int row = firstSelectedRow(list);
    if (row == 0) return;
    QByteArray line;
    platform::resumeNext([&] { line = lists::encodeLine(list.entryPath(row - 1)); });
    lists::replaceListFile(editorFile(), line);
    LaunchCompanion(u"\\Zolvo.exe"_s);
}

void AudioCdHandoff(ports::Boxes& boxes, LoadedList& loaded, std::int16_t totalMinutes,
                    std::int16_t player) {
    if (!fitsOnAudioCd(boxes, totalMinutes)) return;
    handOverPlaylist(boxes, loaded, player, burnListFile(), u"\\Fornax\\Fornax_Shelf.exe"_s);
}

void AudioCdDiscHandoff(ports::Boxes& boxes, LoadedList& loaded, std::int16_t totalMinutes,
                        std::int16_t player) {
    if (!fitsOnAudioCd(boxes, totalMinutes)) return;
    createWorkingFolder();
    handOverPlaylist(boxes, loaded, player, burnFile(), u"\\Fornax\\Fornax_Disc2.EXE"_s);
}

void DataCdHandoff(ports::Boxes& boxes, LoadedList& loaded, std::int16_t player) {
    createWorkingFolder();
    handOverPlaylist(boxes, loaded, player, burnDataFile(), u"\\Fornax\\Fornax_Disc2.EXE"_s);
}

void TagHandoff(const ports::Ports& ports) {
    createWorkingFolder();
    countSelected(ports);
    replaceOrRemove(tagFile(), linesOfSelectedMp3s(ports));
    LaunchCompanion(u"\\Glyphwell.EXE"_s);
}

void LaunchCompanion(const QString& relativePath) noexcept {
    // Companions are optional: without one the command simply ends.
    platform::resumeNext(
        [&] { platform::startProgram(platform::besideApplication(relativePath)); });
}

void launch(Companion companion) noexcept {
    static constexpr std::array<const char16_t*, 6> paths = {
        u"\\Glyphwell_Pro.exe", u"\\Quillon.exe",         u"\\Pelorus.exe",
        u"\\Scallop.exe",       u"\\Marl_Crest_Help.EXE", u"\\MarlCrest_Help.exe"};
    LaunchCompanion(QString::fromUtf16(paths[static_cast<std::size_t>(companion)]));
}

}  // namespace handoff
