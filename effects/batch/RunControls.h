// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>

namespace effects {

/// What a batch run works of the main window besides its ports. Window thread.
class RunControls {
  public:
    virtual ~RunControls() = default;

    virtual void stopPlayback() = 0;  ///< as the Stop button does
    /// The sixteen buttons in their order, the dialogs, the list, and whether the editor shows.
    virtual void setCommandsEnabled(bool enabled) = 0;
    virtual void setFileName(const QString& path) = 0;  ///< the box that the save step reads
    virtual QString fileName() const = 0;
    /// Does the work, which replaces this file, while the player holds no handle on it.
    virtual void replaceFile(const QString& path, const std::function<void()>& work) = 0;
};

}  // namespace effects
