// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ports/Ports.h"

namespace handoff {

class LoadedList;

/// "Copy loaded files (playlist) to 'Project' folder": every entry into a picked folder, with a
/// list of bare names (temp.m3u) beside the copies that is then loaded in place of the playlist.
/// Error style: any failure ends the command with one fixed message; what has been copied stays,
/// temp.m3u holds the names copied so far (one that was there before stays as it was), and the bar
/// stays visible.
void copyToProjectFolder(const ports::Ports& ports, LoadedList& loaded);

/// "Copy loaded files (playlist) to 'M3 Player' via USB port": the files alone. The copies' paths
/// are the picked folder and the file name put together without a separator: right for the root of
/// a drive, which ends in one; beside any other folder the copies bear its name as a prefix.
/// The same error style.
void copyToPlayer(const ports::Ports& ports);

/// The command "Rename selected file": asks for a new name for each file that was selected when the
/// command began, renames it in its folder with its last four characters as extension, and revises
/// the playlist file that the caption names, through mytemp.dat beside the renamed file; a list
/// without a file only shows the new name. A row that shows another file by then, because the list
/// was loaded again meanwhile, is left out. Window thread.
/// Error style "unhandled": throws platform::Error at the first failure, and no later step runs. A
/// name that the playlist file cannot hold is refused before anything is renamed; a later failure
/// says that the file has its new name already.
void renameSelectedFiles(const ports::Ports& ports, LoadedList& loaded);

}  // namespace handoff
