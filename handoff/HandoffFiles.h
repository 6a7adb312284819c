// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace handoff {

// The fixed places at which companion programs look for what is handed to them, as real paths of
// this system.
QString burnListFile();  ///< C:\burn_list.dat
QString burnFile();      ///< C:\Zolvo_Temp\burn.dat
QString burnDataFile();  ///< C:\Zolvo_Temp\burndata.dat
QString tagFile();       ///< C:\Zolvo_Temp\tag.dat
QString editorFile();    ///< C:\Zolvo_Temp\editor.dat

/// Creates the working folder C:\Zolvo_Temp; nothing happens where it exists or cannot be made.
void createWorkingFolder() noexcept;

/// Writes the burn list from full paths as they stand: one per line, CR LF, no header. Replaces an
/// earlier one. Throws platform::Error where it cannot be written whole.
void writeBurnList(const QStringList& paths);

}  // namespace handoff
