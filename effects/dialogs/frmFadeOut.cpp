// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/frmFadeOut.h"

#include "app/modules/modMain.h"
#include "effects/dialogs/FadeLengths.h"
#include "ui_frmFadeOut.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {

frmFadeOut::frmFadeOut(BatchRunner& runner, QWidget* parent)
    : EffectForm(runner, parent), ui_(std::make_unique<Ui::frmFadeOut>()) {
    ui_->setupUi(this);
    ui_->Combo5->setCompleter(nullptr);  // the text stays as typed: it is compared to the letter
    connectButtons(ui_->Command1, ui_->Command2);
    connect(ui_->Slider1, &QSlider::valueChanged, ui_->LabelLevel,
            [this](int level) { ui_->LabelLevel->setText(u"%1 %"_s.arg(level)); });
    makeEasy(ui_->Slider1);
}

frmFadeOut::~frmFadeOut() = default;

void frmFadeOut::fillLengths(const QStringList& lengths) {
    ui_->Combo5->addItems(lengths);
    ui_->Combo5->setCurrentText(lengths.first());
}

void frmFadeOut::Command1_Click() {
    const auto length = fadeMilliseconds(fadeOutLengths(), ui_->Combo5->currentText());
    modMain::FadeOutMs = length.value_or(modMain::FadeOutMs);
    BatchJob work = job();
    work.effect = [this](AudioEditor& editor, const CallGuard& guard) { applyFade(editor, guard); };
    runner().run(work);
}

void frmFadeOut::applyFade(AudioEditor& editor, const CallGuard& guard) {
    EffectSettings settings;
    settings.fadeMs = modMain::FadeOutMs;
    settings.level = static_cast<float>(ui_->Slider1->value());
    effectOf(EffectId::FadeOut).apply(editor, settings, guard);
    modMain::FadeOutStart = settings.fadeOutStart;
}

}  // namespace effects
