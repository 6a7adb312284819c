// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/ProgressBar.h"
#include "wizard/Settings.h"

namespace wizard {

/// What the pass and the rounds need of whoever runs them besides their ports: the wizard's window
/// or the command line. Called on the thread that runs the pass.
class RunView {
  public:
    virtual ~RunView() = default;

    /// The choices as they stand now; asked again for every file.
    virtual Options options() const = 0;

    // The entry in hand. An index that a list does not have selects nothing.
    virtual void selectFile(int index) = 0;  ///< in both lists of files
    virtual void showResults() = 0;          ///< the results take the files' place
    virtual void selectResult(int index) = 0;

    /// A step that failed and was passed over: at most one sentence for each file.
    virtual void stepFailed(const QString& sentence) = 0;

    /// Hands the results over for burning. The last thing of a run: the view may end with it.
    virtual void burn(const QStringList& results) = 0;
};

/// All that a run reaches of whoever runs it; each must outlive the run. The bar counts files, its
/// fraction is that of the engine's operation.
struct RunPorts {
    RunView& view;
    ports::ProgressBar& bar;
    ports::Boxes& boxes;
    ports::EventPump& events;
};

}  // namespace wizard
