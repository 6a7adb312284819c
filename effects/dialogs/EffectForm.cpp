// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/EffectForm.h"

#include <QAbstractButton>
#include <QSlider>

#include "effects/dialogs/TypedValue.h"
#include "widgets/Dispatch.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {

EffectForm::EffectForm(BatchRunner& runner, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      runner_(runner) {}

void EffectForm::Command2_Click() {
    unload();
}

void EffectForm::reject() {
    Command2_Click();
}

void EffectForm::connectButtons(QAbstractButton* apply, QAbstractButton* cancel) {
    connect(apply, &QAbstractButton::clicked, this, widgets::guarded([this] { Command1_Click(); }));
    connect(cancel, &QAbstractButton::clicked, this,
            widgets::guarded([this] { Command2_Click(); }));
}

void EffectForm::makeEasy(QSlider* slider) {
    new TypedValue(slider);
    slider->setFocusPolicy(Qt::StrongFocus);
    slider->setToolTip(u"%1 to %2: drag, turn the wheel, use the arrow keys or type the number"_s
                           .arg(slider->minimum())
                           .arg(slider->maximum()));
}

BatchJob EffectForm::job() {
    BatchJob job;
    job.hideDialog = [this] { hide(); };
    job.unloadDialog = [this] { unload(); };
    job.closingMessage = u"Effect applied to selected file(s)."_s;
    return job;
}

void EffectForm::unload() {
    hide();
    deleteLater();
}

}  // namespace effects
