// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ports/Ports.h"

namespace handoff {

class LoadedList;

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
