// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/FadeForm.h"

#include "effects/dialogs/FadeLengths.h"
#include "ui_FadeForm.h"
#include "widgets/Dispatch.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {

FadeForm::FadeForm(const Kind& kind, BatchRunner& runner, QWidget* parent)
    : EffectForm(runner, parent), kind_(kind), ui_(std::make_unique<Ui::FadeForm>()) {
    ui_->setupUi(this);
    setObjectName(kind_.name);
    ui_->Label2->setText(
        u"Set value for %1 magnitude of the fade: "_s.arg(kind_.quietEnd.toLower()));
    ui_->Slider1->setAccessibleName(kind_.quietEnd + u" magnitude of the fade"_s);
    ui_->Combo5->setCompleter(nullptr);  // the text stays as typed: it is compared to the letter
    connectButtons(ui_->Command1, ui_->Command2);
    connect(
        ui_->Slider1, &QSlider::valueChanged, ui_->LabelLevel,
        widgets::guarded([this](int level) { ui_->LabelLevel->setText(u"%1 %"_s.arg(level)); }));
    makeEasy(ui_->Slider1);
}

FadeForm::~FadeForm() = default;

void FadeForm::fillLengths(const QStringList& lengths) {
    ui_->Combo5->addItems(lengths);
    ui_->Combo5->setCurrentText(lengths.first());
}

void FadeForm::Command1_Click() {
    const auto length = fadeMilliseconds(kind_.lengths, ui_->Combo5->currentText());
    kind_.milliseconds = length.value_or(kind_.milliseconds);
    BatchJob work = job();
    work.effect = [this](Editor& editor, const CallGuard& guard) { applyFade(editor, guard); };
    runner().run(work);
}

void FadeForm::applyFade(Editor& editor, const CallGuard& guard) {
    EffectSettings settings;
    settings.fadeMs = kind_.milliseconds;
    settings.level = static_cast<float>(ui_->Slider1->value());
    effectOf(kind_.effect).apply(editor, settings, guard);
    applied(settings);
}

}  // namespace effects
