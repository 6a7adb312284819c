// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include "effects/batch/BatchRunner.h"

class QAbstractButton;
class QSlider;

namespace effects {

/// What the four effect dialogs have in common: modeless, started by Command1, given up by
/// Command2, Escape or the window's close button, and unloaded at the end of either. Window thread.
class EffectForm : public QDialog {
    Q_OBJECT
  public:
    ~EffectForm() override = default;

    /// Starts the run with this dialog's effect.
    virtual void Command1_Click() = 0;
    /// Closes the dialog; no file changes.
    virtual void Command2_Click();

    void reject() override;

  protected:
    EffectForm(BatchRunner& runner, QWidget* parent);

    void connectButtons(QAbstractButton* apply, QAbstractButton* cancel);
    /// Keys, wheel and typed digits for a slider.
    void makeEasy(QSlider* slider);
    /// A run that hides this dialog at its start and unloads it at its end.
    BatchJob job();
    BatchRunner& runner() { return runner_; }
    void unload();

  private:
    BatchRunner& runner_;
};

}  // namespace effects
