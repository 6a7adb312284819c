// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/LaunchCompanion.h"

#include "platform/Paths.h"
#include "platform/ResumeNext.h"
#include "platform/StartProgram.h"

namespace handoff {

void LaunchCompanion(const QString& relativePath) noexcept {
    // Companions are optional: without one the command simply ends.
    platform::resumeNext(
        [&] { platform::startProgram(platform::besideApplication(relativePath)); });
}

}  // namespace handoff
