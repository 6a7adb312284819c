// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "audio/edit/Work.h"

namespace effects {

/// Does `task` on a thread of its own and returns when it is done. Meanwhile `raise` is called on
/// the calling thread with the percentage, at least every 50 ms; at the end with 100 where the task
/// succeeded. What the task throws is thrown on.
void runInBackground(audio::edit::Work& work, const std::function<void(int percent)>& raise,
                     const std::function<void()>& task);

}  // namespace effects
