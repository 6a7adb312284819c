// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>

#include "effects/batch/BatchRunner.h"

class QWidget;

namespace effects {

class frmEcho_Effects;
class frmEffects;
class frmFadeIn;
class frmFadeOut;

/// The effect dialogs of one main window, at most one of each. Opening one that is still open
/// unloads it first, so that every opening starts from the same values. Window thread.
class EffectDialogs {
  public:
    EffectDialogs(BatchRunner& runner, QWidget* parent) : runner_(runner), parent_(parent) {}
    EffectDialogs(const EffectDialogs&) = delete;
    EffectDialogs& operator=(const EffectDialogs&) = delete;

    // A new dialog, not yet shown; it deletes itself when it is unloaded.
    frmEffects& newEffects();
    frmFadeIn& newFadeIn();
    frmFadeOut& newFadeOut();
    frmEcho_Effects& newEcho();

    /// Whether dialogs take input; off while a run goes on. Those that are still open when it ends
    /// close: the files that they were opened for have been changed.
    void setEnabled(bool enabled);

  private:
    template <class Form>
    Form& renewed(QPointer<Form>& form);

    BatchRunner& runner_;
    QWidget* parent_;
    QPointer<frmEffects> frmEffects_;
    QPointer<frmFadeIn> frmFadeIn_;
    QPointer<frmFadeOut> frmFadeOut_;
    QPointer<frmEcho_Effects> frmEcho_Effects_;
};

}  // namespace effects
