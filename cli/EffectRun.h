// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include "effects/batch/EffectStep.h"

namespace cli {

class Report;

/// One effect on many files, several at a time.
struct EffectRun {
    const effects::Effect* effect = nullptr;
    effects::EffectSettings settings;  ///< every file gets the same
    QStringList files;                 ///< absolute; the same one may come more than once
    QString outputFolder;              ///< empty = in place; else absolute and existing
    unsigned jobs = 1;
};

/// Works through the run and reports every file. In place, a file that comes twice is changed
/// twice; into a folder it is written once, and nothing that is there already is ever written over.
/// A file that fails, or is not begun because of an interrupt, stays as it was.
void applyEffect(const EffectRun& run, Report& report);

}  // namespace cli
