// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/forms/BrowseForFolder.h"

#include <QDir>
#include <QFileDialog>

#include "handoff/PickedFolder.h"

namespace handoff {

QString BrowseForFolder(QWidget* owner, const QString& prompt) {
    return pickedFolder(QFileDialog::getExistingDirectory(owner, prompt, QDir::homePath(),
                                                          QFileDialog::ShowDirsOnly));
}

}  // namespace handoff
