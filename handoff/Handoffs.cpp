// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/Handoffs.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "app/modules/modMain.h"
#include "handoff/HandoffFiles.h"
#include "handoff/Host.h"
#include "handoff/LaunchCompanion.h"
#include "lists/LineFile.h"
#include "platform/ResumeNext.h"

using namespace Qt::Literals::StringLiterals;

namespace handoff {
namespace {

/// Minutes of sound that still go on an audio CD without a question.
constexpr std::int16_t audioCdMinutes = 78;

bool fitsOnAudioCd(Host& host) {
    if (host.totalMinutes() <= audioCdMinutes) return true;
    return host.warnOkCancel(
        u"You are either over, or dangerously close, to the max data\r\n"
        u"(normally 80 mins) allowed to write to an Audio CD disc.\r\n"
        u"\r\n"
        u"Proceed?  "_s,
        u"CAUTION!"_s);
}

void handOverPlaylist(Host& host, std::int16_t player, const QString& file,
                      const QString& companion) {
    std::int32_t failed = 0;
    platform::resumeNext([&] { failed = host.savePlaylistAsM3u(player, file); });
    if (failed)
        host.showMessage(u"Error saving playlist"_s);
    else
        LaunchCompanion(companion);
}

bool isMp3(const QString& path) {
    const QString ending = path.right(3);
    return ending == u"mp3"_s || ending == u"MP3"_s;
}

/// Row 0, which there is not, counts as selected; the last row is not looked at.
void countSelected(Host& host) {
    int count = modMain::SelectedCount;
    for (int row = 0; row < host.rowCount(); ++row)
        if (row == 0 || host.rowSelected(row)) ++count;
    constexpr int most = std::numeric_limits<std::int16_t>::max();
    modMain::SelectedCount = static_cast<std::int16_t>(std::min(count, most));
    host.setBarMaximum(modMain::SelectedCount + 1);
}

void writeSelectedMp3s(Host& host, std::optional<lists::LineFile>& file) {
    const int rows = host.rowCount();
    for (int row = 1; row <= rows; ++row) {
        if (!host.rowSelected(row)) continue;
        host.yield();
        const QString path = host.entryPath(row - 1);
        if (file && isMp3(path)) platform::resumeNext([&] { file->writeLine(path); });
    }
}

int firstSelectedRow(const Host& host) {
    for (int row = 1; row <= host.rowCount(); ++row)
        if (host.rowSelected(row)) return row;
    return 0;
}

}  // namespace

void audioCdWriter(Host& host) {
    if (host.askYesNo(u"What to auto insert the loaded files (playlist) into the Audio Writer?"_s,
                      u"What do you want to do?"_s))
        AudioCdHandoff(host, 0);
    else
        LaunchCompanion(u"\\Fornax\\Fornax_Audio.EXE"_s);
}

void dataCdWriter() {
    LaunchCompanion(u"\\Fornax\\Fornax_Data.EXE"_s);
}

void openInEditor(Host& host) {
    const int row = firstSelectedRow(host);
    if (row == 0) return;
    const QString path = host.entryPath(row - 1);
    {
        lists::LineFile file(editorFile());
        createWorkingFolder();
        platform::resumeNext([&] { file.writeLine(path); });
    }
    LaunchCompanion(u"\\Zolvo.exe"_s);
}

void AudioCdHandoff(Host& host, std::int16_t player) {
    if (!fitsOnAudioCd(host)) return;
    handOverPlaylist(host, player, burnListFile(), u"\\Fornax\\Fornax_Shelf.exe"_s);
}

void AudioCdDiscHandoff(Host& host, std::int16_t player) {
    if (!fitsOnAudioCd(host)) return;
    createWorkingFolder();
    handOverPlaylist(host, player, burnFile(), u"\\Fornax\\Fornax_Disc2.EXE"_s);
}

void DataCdHandoff(Host& host, std::int16_t player) {
    createWorkingFolder();
    handOverPlaylist(host, player, burnDataFile(), u"\\Fornax\\Fornax_Disc2.EXE"_s);
}

void TagHandoff(Host& host) {
    {
        createWorkingFolder();
        std::optional<lists::LineFile> file;
        platform::resumeNext([&] { file.emplace(tagFile()); });
        countSelected(host);
        writeSelectedMp3s(host, file);
    }
    LaunchCompanion(u"\\Glyphwell.EXE"_s);
}

void launch(Companion companion) noexcept {
    static constexpr std::array<const char16_t*, 6> paths = {
        u"\\Glyphwell_Pro.exe", u"\\Quillon.exe",         u"\\Pelorus.exe",
        u"\\Scallop.exe",       u"\\Marl_Crest_Help.EXE", u"\\MarlCrest_Help.exe"};
    LaunchCompanion(QString::fromUtf16(paths[static_cast<std::size_t>(companion)]));
}

}  // namespace handoff
