// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>

#include "ports/Ports.h"

namespace handoff {

class LoadedList;

// What is handed to companion programs, and their start. All run on the window thread; totalMinutes
// is what the list under it sums up to.

/// The command "Audio CD Writer": asks whether to insert the playlist; Yes hands it over, No starts
/// the writer alone.
void audioCdWriter(ports::Boxes& boxes, LoadedList& loaded, std::int16_t totalMinutes);
/// The command "Data CD Writer": starts it, with nothing handed over.
void dataCdWriter();
/// The command "Open selected file in the Audio Editor": the first selected entry's path. Throws
/// platform::Error where the hand-off file cannot be written, and starts nothing then.
void openInEditor(const ports::FileList& list);

/// Saves a player's playlist as C:\burn_list.dat and starts the writer's shelf. Asks first where
/// the playlist may be too long for an audio CD; a save that fails is told, and starts nothing.
void AudioCdHandoff(ports::Boxes& boxes, LoadedList& loaded, std::int16_t totalMinutes,
                    std::int16_t player);
/// The same for C:\Zolvo_Temp\burn.dat and the disc writer. No command reaches it.
void AudioCdDiscHandoff(ports::Boxes& boxes, LoadedList& loaded, std::int16_t totalMinutes,
                        std::int16_t player);
/// The same for C:\Zolvo_Temp\burndata.dat, without the question of length. No command reaches it.
void DataCdHandoff(ports::Boxes& boxes, LoadedList& loaded, std::int16_t player);

/// Writes the paths of the selected entries that end in "mp3" or "MP3" (these two spellings alone)
/// for the tag editor, and starts that, whatever fails. Adds to modMain::SelectedCount: one for a
/// row 0 that there is not (in a list that is not empty), and one per selected row but the last
/// one of the list.
void TagHandoff(const ports::Ports& ports);

/// Starts a companion program given by its fixed path relative to the application folder
/// ("\\Fornax\\Fornax_Audio.EXE"), in a normal window, without arguments, and does not wait for it.
/// A companion that is missing or cannot be started is passed over in silence.
void LaunchCompanion(const QString& relativePath) noexcept;

/// Companions that have no command.
enum class Companion { GlyphwellPro, Quillon, Pelorus, Scallop, MarlCrestHelp, MarlCrestHelp2 };
void launch(Companion companion) noexcept;

}  // namespace handoff
