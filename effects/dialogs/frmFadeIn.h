// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/dialogs/FadeForm.h"

namespace effects {

/// Asks for the length of a fade-in and the level it starts from, for the start of every selected
/// file.
class frmFadeIn : public FadeForm {
    Q_OBJECT
  public:
    explicit frmFadeIn(BatchRunner& runner, QWidget* parent = nullptr);
};

}  // namespace effects
