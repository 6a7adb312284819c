// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>

#include "ports/Ports.h"

namespace handoff {

/// What a project's list of copied files is called.
inline const QString projectListName = QStringLiteral("temp.m3u");

/// The line that stands for a file name in such a list: the name itself; one that would read as a
/// comment is given its folder ("./#1.mp3").
QString projectListLine(const QString& name);

/// Called when an entry of the list has been copied, in their order.
using Copied = std::function<void(int entry)>;

/// Copies every file of the list to `target` immediately followed by its name, one after the other,
/// each on a worker thread while this thread handles its events. The bar counts files, its fraction
/// is that of the file in hand. Returns false where nobody waits for the end any more: the file in
/// hand is completed then, unless the whole program ends. Throws platform::Error at the first file
/// that cannot be copied; what has been copied stays. Each copy and its name are on the device
/// before the next one is begun, so that a player may be unplugged when it returns.
bool copyFiles(const ports::Ports& ports, const QString& target, const Copied& copied = {});

/// The same into a folder (ending in a separator), with a list of the bare names beside the copies.
/// A list that is there, perhaps the one that is copied, gives way only to a whole one; where there
/// is none, the list of a copying that ended early holds the names copied so far. Throws before
/// anything is copied where the list cannot be written.
bool copyProject(const ports::Ports& ports, const QString& folder, const Copied& copied = {});

}  // namespace handoff
