// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/frmEcho_Effects.h"

#include "app/modules/modMain.h"
#include "ui_frmEcho_Effects.h"

namespace effects {

frmEcho_Effects::frmEcho_Effects(BatchRunner& runner, QWidget* parent)
    : EffectForm(runner, parent), ui_(std::make_unique<Ui::frmEcho_Effects>()) {
    ui_->setupUi(this);
    connectButtons(ui_->Command1, ui_->Command2);
    Form_Load();
}

frmEcho_Effects::~frmEcho_Effects() = default;

// The ranges and initial values are those of the form.
void frmEcho_Effects::Form_Load() {
    showValue(ui_->Slider1, ui_->Label7_0);
    showValue(ui_->Slider2, ui_->Label7_1);
    showValue(ui_->Slider3, ui_->Label7_2);
    showValue(ui_->Slider4, ui_->Label7_3);
    showValue(ui_->Slider5, ui_->Label7_4);
}

void frmEcho_Effects::showValue(QSlider* slider, QLabel* label) {
    label->setNum(slider->value());
    connect(slider, &QSlider::valueChanged, label, qOverload<int>(&QLabel::setNum));
    makeEasy(slider);
}

void frmEcho_Effects::Command1_Click() {
    BatchJob work = job();
    work.effect = [this](Editor& editor, const CallGuard& guard) { applyEcho(editor, guard); };
    runner().run(work);
}

void frmEcho_Effects::applyEcho(Editor& editor, const CallGuard& guard) {
    modMain::EffectValue = ui_->Slider1->value();
    EffectSettings settings;
    settings.echo.time = static_cast<float>(ui_->Slider5->value());
    settings.echo.depth = static_cast<float>(ui_->Slider4->value());
    settings.echo.gain = static_cast<float>(ui_->Slider3->value());
    settings.echo.rate = static_cast<float>(ui_->Slider1->value());
    effectOf(EffectId::Echo).apply(editor, settings, guard);
}

}  // namespace effects
