// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "effects/dialogs/EffectForm.h"

namespace Ui {
class frmFadeOut;
}

namespace effects {

/// Asks for the length of a fade-out and the level it ends at, and applies it to the end of every
/// selected file. The menu handler gives it its caption and fills the list.
class frmFadeOut : public EffectForm {
    Q_OBJECT
  public:
    explicit frmFadeOut(BatchRunner& runner, QWidget* parent = nullptr);
    ~frmFadeOut() override;

    /// Adds the lengths to Combo5 and shows the first one.
    void fillLengths(const QStringList& lengths);

    void Command1_Click() override;

  private:
    void applyFade(AudioEditor& editor, const CallGuard& guard);

    std::unique_ptr<Ui::frmFadeOut> ui_;
};

}  // namespace effects
