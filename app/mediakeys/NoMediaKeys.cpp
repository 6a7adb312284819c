// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mediakeys/MediaKeys.h"

namespace app {

std::unique_ptr<QObject> attachMediaKeys(const MediaControls&) {
    return nullptr;
}

}  // namespace app
