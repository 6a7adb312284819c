// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "effects/dialogs/EffectForm.h"

class QLabel;
class QSlider;

namespace Ui {
class frmEcho_Effects;
}

namespace effects {

/// Asks for the settings of an echo over whole files, and applies it. "Delay Rate:" can be moved
/// but reaches no file: the echo has a fixed cutoff in its place.
class frmEcho_Effects : public EffectForm {
    Q_OBJECT
  public:
    explicit frmEcho_Effects(BatchRunner& runner, QWidget* parent = nullptr);
    ~frmEcho_Effects() override;

    void Command1_Click() override;

  private:
    void Form_Load();
    void showValue(QSlider* slider, QLabel* label);
    void applyEcho(Editor& editor, const CallGuard& guard);

    std::unique_ptr<Ui::frmEcho_Effects> ui_;
};

}  // namespace effects
