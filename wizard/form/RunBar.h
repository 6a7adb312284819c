// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ports/ProgressBar.h"

namespace Ui {
class frmFadeWizard2;
}

namespace wizard {

/// The wizard's bar of files, the bar of the engine's operation below it, and its status label.
/// Window thread.
class RunBar : public ports::ProgressBar {
  public:
    explicit RunBar(Ui::frmFadeWizard2& ui) : ui_(ui) {}

    void setShown(bool) override {}  // both stay in view
    void setMaximum(int pieces) override;
    void setValue(int pieces) override;
    void setFraction(double fraction) override;
    void setStatus(const QString& text) override;

  private:
    Ui::frmFadeWizard2& ui_;
};

}  // namespace wizard
