// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/batch/BatchRunner.h"

#include <exception>

#include <QScopedValueRollback>

#include "app/modules/modMain.h"
#include "effects/engine/Editor.h"
#include "ports/Boxes.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {
namespace {

void callIfSet(const std::function<void()>& function) {
    if (function) function();
}

}  // namespace

/// Marks the runner as busy for the length of a run, whichever way it ends.
class BatchRunner::Running {
  public:
    explicit Running(BatchRunner& runner) : runner_(runner) {
        runner_.running_ = true;
        runner_.done_ = 0;
        runner_.ports_.list.clearRowMarks();
    }
    ~Running() { runner_.running_ = false; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    BatchRunner& runner_;
};

void BatchRunner::run(const BatchJob& job) {
    if (running_) return;
    const Running busy(*this);
    attempt([this] { controls_.stopPlayback(); });
    callIfSet(job.hideDialog);
    ports_.events.yield();
    controls_.setCommandsEnabled(false);
    if (job.readSettings) {
        job.readSettings();
        ports_.events.yield();
    }
    countSelected();
    workThroughSelection([this] { ports_.bar.setShown(true); }, job);
    modMain::EffectMode = modMain::ModeNone;
    modMain::SelectedCount = 0;
    ports_.bar.setShown(false);
    ports_.bar.setStatus({});
    ports_.bar.setValue(0);
    if (job.deselectAtEnd) attempt([this] { editor_.SetSelectionActive(false); });
    if (!ports_.events.closing()) ports_.boxes.showMessage(job.closingMessage);
    controls_.setCommandsEnabled(true);
    callIfSet(job.unloadDialog);
}

void BatchRunner::trim() {
    if (running_) return;
    const Running busy(*this);
    const Effect& effect = effectOf(EffectId::Trim);
    BatchJob job;
    job.effect = [&effect](Editor& editor, const CallGuard& guarded) {
        EffectSettings none;
        effect.apply(editor, none, guarded);
    };
    attempt([this] { controls_.stopPlayback(); });
    controls_.setCommandsEnabled(false);
    ports_.events.yield();
    workThroughSelection({}, job);
    controls_.setCommandsEnabled(true);
    ports_.bar.setStatus({});
}

// A click on the button within a run could save one file's sound over another's: only the run's own
// step counts then.
void BatchRunner::save() {
    if (saving_ || (running_ && phase_ != saving)) return;
    const QScopedValueRollback busy(saving_, true);
    ports_.events.yield();
    const QString path = controls_.fileName();
    attempt([&] {
        controls_.replaceFile(path, [&] { editor_.Save(path, true, 0); });
        if (reason_.isEmpty()) reason_ = editor_.SaveNotice();
    });
    ports_.events.yield();
}

void BatchRunner::progress(int percent) {
    if (!running_) return ports_.events.repaint();
    ports_.bar.setFraction((phase_ + percent / 100.0) / phases);
    ports_.events.yield();
}

// Counts rows 0 to n - 1 although rows are numbered from 1, so the last one never counts: the
// bar's maximum is known by this.
void BatchRunner::countSelected() {
    const int rows = ports_.list.rowCount();
    for (int index = 0; index < rows; ++index)
        if (ports_.list.rowSelected(index)) ++modMain::SelectedCount;
    ports_.bar.setMaximum(modMain::SelectedCount + 1);
}

void BatchRunner::workThroughSelection(const std::function<void()>& beforeEach,
                                       const BatchJob& job) {
    const int rows = ports_.list.rowCount();
    for (int row = 1; row <= rows && !ports_.events.closing(); ++row) {
        if (!ports_.list.rowSelected(row)) continue;
        ports_.events.yield();
        callIfSet(beforeEach);
        ports_.bar.setValue(++done_);
        workOn(row, job);
    }
}

void BatchRunner::workOn(int row, const BatchJob& job) {
    reason_.clear();
    const QString path = ports_.list.entryPath(row - 1);
    enter(loading);
    attempt([&] { editor_.Load(path); });
    controls_.setFileName(path);
    ports_.events.yield();
    ports_.bar.setStatus(u"Working on: "_s + ports_.list.entryName(row - 1));
    ports_.events.yield();
    enter(changing);
    if (job.effect) job.effect(editor_, guard());
    enter(saving);
    save();
    if (!reason_.isEmpty()) ports_.list.markRow(row, reason_);
}

void BatchRunner::enter(int phase) {
    phase_ = phase;
    ports_.bar.setFraction(static_cast<double>(phase) / phases);
}

void BatchRunner::attempt(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::exception& error) {
        if (reason_.isEmpty()) reason_ = QString::fromUtf8(error.what());
    }
}

CallGuard BatchRunner::guard() {
    return [this](const std::function<void()>& call) { attempt(call); };
}

}  // namespace effects
