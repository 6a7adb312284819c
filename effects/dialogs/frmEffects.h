// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include <QTimer>

#include "effects/dialogs/EffectForm.h"

namespace Ui {
class frmEffects;
}

namespace effects {

/// Asks for the one value of the effect that modMain::EffectMode names, and applies it. Set the
/// mode before making one: the slider is set up by it.
class frmEffects : public EffectForm {
    Q_OBJECT
  public:
    explicit frmEffects(BatchRunner& runner, QWidget* parent = nullptr);
    ~frmEffects() override;

    void Command1_Click() override;
    void Command2_Click() override;

  private:
    void Form_Load();
    void Slider1_Change();
    void Timer1_Timer();
    void KeepOnTop();

    std::unique_ptr<Ui::frmEffects> ui_;
    QTimer Timer1;
};

}  // namespace effects
