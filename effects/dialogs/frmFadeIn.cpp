// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/frmFadeIn.h"

#include "app/modules/modMain.h"
#include "effects/dialogs/FadeLengths.h"
#include "ui_frmFadeIn.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {

frmFadeIn::frmFadeIn(BatchRunner& runner, QWidget* parent)
    : EffectForm(runner, parent), ui_(std::make_unique<Ui::frmFadeIn>()) {
    ui_->setupUi(this);
    ui_->Combo5->setCompleter(nullptr);  // the text stays as typed: it is compared to the letter
    connectButtons(ui_->Command1, ui_->Command2);
    connect(ui_->Slider1, &QSlider::valueChanged, ui_->LabelLevel,
            [this](int level) { ui_->LabelLevel->setText(u"%1 %"_s.arg(level)); });
    makeEasy(ui_->Slider1);
}

frmFadeIn::~frmFadeIn() = default;

void frmFadeIn::fillLengths(const QStringList& lengths) {
    ui_->Combo5->addItems(lengths);
    ui_->Combo5->setCurrentText(lengths.first());
}

void frmFadeIn::Command1_Click() {
    const auto length = fadeMilliseconds(fadeInLengths(), ui_->Combo5->currentText());
    modMain::FadeInMs = length.value_or(modMain::FadeInMs);
    BatchJob work = job();
    work.effect = [this](AudioEditor& editor, const CallGuard& guard) { applyFade(editor, guard); };
    runner().run(work);
}

void frmFadeIn::applyFade(AudioEditor& editor, const CallGuard& guard) {
    EffectSettings settings;
    settings.fadeMs = modMain::FadeInMs;
    settings.level = static_cast<float>(ui_->Slider1->value());
    effectOf(EffectId::FadeIn).apply(editor, settings, guard);
}

}  // namespace effects
