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

}  // namespace handoff
