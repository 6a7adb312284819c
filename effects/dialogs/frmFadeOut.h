// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/dialogs/FadeForm.h"

namespace effects {

/// Asks for the length of a fade-out and the level it ends at, for the end of every selected file.
class frmFadeOut : public FadeForm {
    Q_OBJECT
  public:
    explicit frmFadeOut(BatchRunner& runner, QWidget* parent = nullptr);

  protected:
    void applied(const EffectSettings& settings) override;
};

}  // namespace effects
