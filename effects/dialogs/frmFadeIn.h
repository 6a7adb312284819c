// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "effects/dialogs/EffectForm.h"

namespace Ui {
class frmFadeIn;
}

namespace effects {

/// Asks for the length of a fade-in and the level it starts from, and applies it to the start of
/// every selected file. The menu handler gives it its caption and fills the list.
class frmFadeIn : public EffectForm {
    Q_OBJECT
  public:
    explicit frmFadeIn(BatchRunner& runner, QWidget* parent = nullptr);
    ~frmFadeIn() override;

    /// Adds the lengths to Combo5 and shows the first one.
    void fillLengths(const QStringList& lengths);

    void Command1_Click() override;

  private:
    void applyFade(AudioEditor& editor, const CallGuard& guard);

    std::unique_ptr<Ui::frmFadeIn> ui_;
};

}  // namespace effects
