// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScreen>
#include <QWidget>

namespace widgets {

/// Makes a window that is not shown yet no larger than its screen has room for: at a high scaling
/// that may be less than the window would like.
inline void fitScreen(QWidget& window) {
    constexpr int titleBarRoom = 40;
    window.resize(
        window.size().boundedTo(window.screen()->availableSize() - QSize(0, titleBarRoom)));
}

}  // namespace widgets
