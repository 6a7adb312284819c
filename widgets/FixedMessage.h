// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <utility>

#include "widgets/MsgBox.h"

namespace widgets {

/// The error style "jump to one fixed message and end": runs the body; whatever it throws ends it
/// and shows the message (OK only, no icon). Answers whether the body came to its end.
template <class Body>
bool orFixedMessage(const QString& message, Body&& body) {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (const std::exception&) {
        msgBox(message);
        return false;
    }
}

}  // namespace widgets
