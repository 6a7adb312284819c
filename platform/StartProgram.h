// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace platform {

/// Starts a program without arguments as a process of its own, in a normal, activated window, and
/// returns at once. Nobody waits for it: it outlives this program and leaves no zombie behind.
/// Throws Error where it is missing or cannot be executed.
void startProgram(const QString& path);

}  // namespace platform
