// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/forms/BrowseForFolder.h"

#include "handoff/PickedFolder.h"
#include "widgets/FolderDialog.h"

namespace handoff {

QString BrowseForFolder(QWidget* owner, const QString& prompt) {
    return pickedFolder(widgets::pickFolder(owner, prompt));
}

}  // namespace handoff
