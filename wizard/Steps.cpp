// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Steps.h"

#include "platform/Error.h"

namespace wizard {

void guardedSave(effects::Editor& editor, const Originals& originals, const QString& path,
                 bool selectionOnly) {
    if (originals.contains(path))
        throw platform::Error(path.toStdString() +
                              " is one of the files to transform and is not written over.");
    editor.Save(path, selectionOnly, 0);
}

}  // namespace wizard
