// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/ScratchFile.h"

#include <QDir>
#include <QTemporaryFile>

#include "platform/Error.h"
#include "platform/Paths.h"

namespace audio::edit {

ScratchFile::ScratchFile(const std::filesystem::path& folder) {
    const QString place = folder.empty() ? QDir::tempPath() : platform::toQString(folder);
    QDir().mkpath(place);
    QTemporaryFile file(QDir(place).filePath(QStringLiteral("tracksmith-XXXXXX.part")));
    file.setAutoRemove(false);
    if (!file.open())
        throw platform::Error("No scratch file can be created in \"" + place.toStdString() +
                              "\": " + file.errorString().toStdString() + ".");
    path_ = platform::toPath(file.fileName());
}

ScratchFile::~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

}  // namespace audio::edit
