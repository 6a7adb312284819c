// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/HandoffFiles.h"

#include <filesystem>

#include "lists/ListWriter.h"
#include "platform/Paths.h"

namespace handoff {

QString burnListFile() {
    return platform::fixedPath(QStringLiteral("C:\\burn_list.dat"));
}

QString burnFile() {
    return platform::fixedPath(QStringLiteral("C:\\Zolvo_Temp\\burn.dat"));
}

QString burnDataFile() {
    return platform::fixedPath(QStringLiteral("C:\\Zolvo_Temp\\burndata.dat"));
}

QString tagFile() {
    return platform::fixedPath(QStringLiteral("C:\\Zolvo_Temp\\tag.dat"));
}

QString editorFile() {
    return platform::fixedPath(QStringLiteral("C:\\Zolvo_Temp\\editor.dat"));
}

void createWorkingFolder() noexcept {
    std::error_code ignored;
    std::filesystem::create_directory(
        platform::toPath(platform::fixedPath(QStringLiteral("C:\\Zolvo_Temp"))), ignored);
}

void writeBurnList(const QStringList& paths) {
    lists::writeLines(burnListFile(), paths);
}

}  // namespace handoff
