// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QString>
#include <QStringList>

#include "wizard/Settings.h"

namespace cli {

class Report;

/// One run of the wizard's pass, and of its two rounds where a cross fade is asked for.
struct MixRun {
    QStringList files;        ///< absolute, in the order of the mix
    wizard::Options options;  ///< the target folder exists and ends in a separator
    std::int32_t fadeOutMs = 0;
    std::int32_t fadeInMs = 0;
    std::int32_t overlapMs = 0;
    QString burnList;  ///< absolute; empty = write none
};

/// Works through the run and reports every file. Refused where two files would get the same name in
/// the target folder, or where it holds one of the originals. An interrupt ends it after the file
/// in hand. Throws platform::Error where the burn list cannot be written.
void runMix(const MixRun& run, Report& report);

}  // namespace cli
