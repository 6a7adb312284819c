// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QString>

#include "effects/batch/EffectStep.h"
#include "effects/batch/RunControls.h"
#include "ports/Ports.h"

namespace effects {

/// What one dialog brings to a run. Functions that are empty are left out.
struct BatchJob {
    std::function<void()> hideDialog;
    std::function<void()> readSettings;  ///< once, when the window's commands are disabled
    std::function<void(Editor&, const CallGuard&)> effect;  ///< for the file in hand
    bool deselectAtEnd = false;  ///< whether the run ends by making the selection inactive
    QString closingMessage;
    std::function<void()> unloadDialog;
};

/// Applies one effect to every selected file of the playlist, in place: load, effect, save, next.
/// No engine error ends a run; the row of a file that failed, or was left as it is, is marked with
/// the first reason. One
/// run at a time; it yields to the window's events throughout, so it must not be started again from
/// within: see running(). Window thread.
class BatchRunner {
  public:
    BatchRunner(Editor& editor, const ports::Ports& ports, RunControls& controls)
        : editor_(editor), ports_(ports), controls_(controls) {}
    BatchRunner(const BatchRunner&) = delete;
    BatchRunner& operator=(const BatchRunner&) = delete;

    /// A dialog's run, to its closing message and the unloading of the dialog. Does nothing while
    /// another run is going on.
    void run(const BatchJob& job);
    /// The pass that trims silence: no dialog, no bar of its own, no closing message.
    void trim();
    bool running() const { return running_; }

    /// The save step: writes what the engine holds over the path in the file-name box. An error
    /// ends it without a message; within a run it marks the row.
    void save();
    /// For the engine's Progress: moves the bar within the file and lets the window live.
    void progress(int percent);

  private:
    class Running;
    static constexpr int loading = 0, changing = 1, saving = 2, phases = 3;

    void countSelected();
    void workThroughSelection(const std::function<void()>& beforeEach, const BatchJob& job);
    void workOn(int row, const BatchJob& job);
    void enter(int phase);
    void attempt(const std::function<void()>& call);
    CallGuard guard();

    Editor& editor_;
    ports::Ports ports_;
    RunControls& controls_;
    bool running_ = false;
    bool saving_ = false;  // the save step is under way
    int done_ = 0;         // files begun in this run: the bar's value
    int phase_ = loading;  // of the file in hand
    QString reason_;       // why the file in hand failed; empty while it has not
};

}  // namespace effects
