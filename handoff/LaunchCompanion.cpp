// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/LaunchCompanion.h"

#include <exception>

#include "platform/Paths.h"
#include "platform/StartProgram.h"

namespace handoff {

void LaunchCompanion(const QString& relativePath) noexcept {
    try {
        platform::startProgram(platform::besideApplication(relativePath));
    } catch (const std::exception&) {
        // Companions are optional: the command simply ends.
    }
}

}  // namespace handoff
