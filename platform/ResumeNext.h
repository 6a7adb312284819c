// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>

namespace platform {

/// The error style "ignore every error and go on with the next statement": runs one step and
/// swallows whatever it throws. Answers whether the step came to its end. Use it around one
/// statement at a time, for it drops the reason; a caller that reports failures catches them
/// itself.
template <class Step>
bool resumeNext(Step&& step) noexcept {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace platform
