// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/batch/BatchRunner.h"

#include <exception>

#include <QScopedValueRollback>

#include "app/modules/modMain.h"
#include "effects/engine/Editor.h"

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
        runner_.host_.clearRowMarks();
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
    attempt([this] { host_.stopPlayback(); });
    callIfSet(job.hideDialog);
    host_.yield();
    disableWindow();
    if (job.readSettings) {
        job.readSettings();
        host_.yield();
    }
    countSelected();
    workThroughSelection([this] { host_.setBarVisible(true); }, job);
    modMain::EffectMode = modMain::ModeNone;
    modMain::SelectedCount = 0;
    host_.setBarVisible(false);
    host_.setStatus({});
    host_.setBarValue(0);
    if (job.deselectAtEnd) attempt([this] { host_.editor().SetSelectionActive(false); });
    if (!host_.closing()) host_.showMessage(job.closingMessage);
    enableWindow();
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
    attempt([this] { host_.stopPlayback(); });
    disableWindow();
    host_.yield();
    workThroughSelection({}, job);
    enableWindow();
    host_.setStatus({});
}

// A click on the button within a run could save one file's sound over another's: only the run's own
// step counts then.
void BatchRunner::save() {
    if (saving_ || (running_ && phase_ != saving)) return;
    const QScopedValueRollback busy(saving_, true);
    host_.yield();
    const QString path = host_.fileName();
    attempt([&] { host_.replaceFile(path, [&] { host_.editor().Save(path, true, 0); }); });
    host_.yield();
}

void BatchRunner::progress(int percent) {
    if (!running_) return host_.repaint();
    host_.setFileProgress((phase_ + percent / 100.0) / phases);
    host_.yield();
}

void BatchRunner::disableWindow() {
    host_.setCommandButtonsEnabled(false);
    host_.setListEnabled(false);
    host_.setEditorVisible(false);
}

void BatchRunner::enableWindow() {
    host_.setCommandButtonsEnabled(true);
    host_.setListEnabled(true);
    host_.setEditorVisible(true);
}

// Counts rows 0 to n - 1 although rows are numbered from 1, so the last one never counts: the
// bar's maximum is known by this.
void BatchRunner::countSelected() {
    const int rows = host_.rowCount();
    for (int index = 0; index < rows; ++index)
        if (host_.rowSelected(index)) ++modMain::SelectedCount;
    host_.setBarMaximum(modMain::SelectedCount + 1);
}

void BatchRunner::workThroughSelection(const std::function<void()>& beforeEach,
                                       const BatchJob& job) {
    const int rows = host_.rowCount();
    for (int row = 1; row <= rows && !host_.closing(); ++row) {
        if (!host_.rowSelected(row)) continue;
        host_.yield();
        callIfSet(beforeEach);
        host_.setBarValue(++done_);
        workOn(row, job);
    }
}

void BatchRunner::workOn(int row, const BatchJob& job) {
    reason_.clear();
    Editor& editor = host_.editor();
    const QString path = host_.entryPath(row - 1);
    enter(loading);
    attempt([&] { editor.Load(path); });
    host_.setFileName(path);
    host_.yield();
    host_.setStatus(u"Working on: "_s + host_.entryName(row - 1));
    host_.yield();
    enter(changing);
    if (job.effect) job.effect(editor, guard());
    enter(saving);
    host_.saveStep();
    if (!reason_.isEmpty()) host_.markRow(row, reason_);
}

void BatchRunner::enter(int phase) {
    phase_ = phase;
    host_.setFileProgress(static_cast<double>(phase) / phases);
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
