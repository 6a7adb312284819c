// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/engine/Editor.h"
#include "wizard/Session.h"

namespace wizard {

/// Saves as the engine does, but never over one of the originals: that is a platform::Error, and
/// the file is left as it is.
void guardedSave(effects::Editor& editor, const Originals& originals, const QString& path,
                 bool selectionOnly);

}  // namespace wizard
