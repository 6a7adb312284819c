// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/frmEffects.h"

#include <chrono>

#include <QApplication>
#include <QWindow>

#include "app/modules/modMain.h"
#include "platform/Foreground.h"
#include "ui_frmEffects.h"
#include "widgets/Dispatch.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {
namespace {

constexpr std::chrono::milliseconds topInterval{250};

// The amplify effects write their value back: the next file of the run gets it.
void applyChosenMode(Editor& editor, const CallGuard& guard) {
    const Effect* effect = effectOfMode(modMain::EffectMode);
    if (!effect) return;
    EffectSettings settings;
    settings.value = modMain::EffectValue;
    effect->apply(editor, settings, guard);
    modMain::EffectValue = settings.value;
}

}  // namespace

frmEffects::frmEffects(BatchRunner& runner, QWidget* parent)
    : EffectForm(runner, parent), ui_(std::make_unique<Ui::frmEffects>()) {
    ui_->setupUi(this);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    connectButtons(ui_->Command1, ui_->Command2);
    connect(ui_->Slider1, &QSlider::valueChanged, this,
            widgets::guarded(this, &frmEffects::Slider1_Change));
    connect(&Timer1, &QTimer::timeout, this, widgets::guarded(this, &frmEffects::Timer1_Timer));
    Form_Load();
    makeEasy(ui_->Slider1);
    Timer1.setObjectName(u"Timer1"_s);
    Timer1.start(topInterval);
}

frmEffects::~frmEffects() = default;

void frmEffects::Form_Load() {
    const Effect* effect = effectOfMode(modMain::EffectMode);
    if (!effect) return Slider1_Change();
    ui_->Slider1->setRange(effect->value.minimum, effect->value.maximum);
    ui_->Slider1->setPageStep((effect->value.maximum - effect->value.minimum) / 10);
    ui_->Slider1->setValue(effect->value.initial);
    ui_->LabelUnit->setText(QString::fromLatin1(effect->value.unit));
    Slider1_Change();
}

void frmEffects::Slider1_Change() {
    ui_->LabelValue->setNum(ui_->Slider1->value());
}

void frmEffects::Timer1_Timer() {
    KeepOnTop();
}

// A question of the program itself must not be covered.
void frmEffects::KeepOnTop() {
    if (!isVisible()) return;
    const bool question = QApplication::activeModalWidget() != nullptr;
    windowHandle()->setFlag(Qt::WindowStaysOnTopHint, !question);
    if (!question) platform::keepOnTop(static_cast<std::uintptr_t>(winId()));
}

void frmEffects::Command1_Click() {
    BatchJob work = job();
    work.readSettings = [this] { modMain::EffectValue = ui_->Slider1->value(); };
    work.effect = applyChosenMode;
    work.deselectAtEnd = true;
    work.closingMessage = u"Effects applied to selected file(s)."_s;
    runner().run(work);
}

void frmEffects::Command2_Click() {
    modMain::EffectMode = modMain::ModeNone;
    unload();
}

}  // namespace effects
