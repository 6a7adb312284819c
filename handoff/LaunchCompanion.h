// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace handoff {

/// Starts a companion program given by its fixed path relative to the application folder
/// ("\\Fornax\\Fornax_Audio.EXE"), in a normal window, without arguments, and does not wait for it.
/// A companion that is missing or cannot be started is passed over in silence.
void LaunchCompanion(const QString& relativePath) noexcept;

}  // namespace handoff
