// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include "wizard/Settings.h"

namespace wizard {

/// What the pass and the rounds need of whoever runs them: the wizard's window or the command line.
/// Called on the thread that runs the pass.
class Host {
  public:
    virtual ~Host() = default;

    /// The choices as they stand now; asked again for every file.
    virtual Options options() const = 0;

    /// True once nobody waits for the run any more, as when its window was closed: it ends after
    /// the file in hand, and says and asks nothing.
    virtual bool abandoned() const = 0;

    virtual void showStatus(const QString& text) = 0;

    // Progress over the files, and within the engine's operation (percent).
    virtual void setFileMaximum(int files) = 0;
    virtual void setFileProgress(int files) = 0;
    virtual void setEngineProgress(int percent) = 0;

    // The entry in hand. An index that a list does not have selects nothing.
    virtual void selectFile(int index) = 0;  ///< in both lists of files
    virtual void showResults() = 0;          ///< the results take the files' place
    virtual void selectResult(int index) = 0;

    /// A step that failed and was passed over: at most one sentence for each file.
    virtual void stepFailed(const QString& sentence) = 0;

    /// The run cannot begin; nothing was changed.
    virtual void refuse(const QString& reason) = 0;

    /// The files are transformed, and there is nothing to cross-fade.
    virtual void sayCompleted() = 0;

    /// Asks whether the mix is to be burned.
    virtual bool askReadyToBurn() = 0;

    /// Hands the results over for burning. The last thing of a run: the host may end with it.
    virtual void burn(const QStringList& results) = 0;
};

}  // namespace wizard
