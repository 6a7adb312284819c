// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/EffectDialogs.h"

#include <initializer_list>

#include "effects/dialogs/frmEcho_Effects.h"
#include "effects/dialogs/frmEffects.h"
#include "effects/dialogs/frmFadeIn.h"
#include "effects/dialogs/frmFadeOut.h"

namespace effects {

template <class Form>
Form& EffectDialogs::renewed(QPointer<Form>& form) {
    if (form) {
        form->hide();
        form->deleteLater();
    }
    form = new Form(runner_, parent_);
    return *form;
}

frmEffects& EffectDialogs::newEffects() {
    return renewed(frmEffects_);
}
frmFadeIn& EffectDialogs::newFadeIn() {
    return renewed(frmFadeIn_);
}
frmFadeOut& EffectDialogs::newFadeOut() {
    return renewed(frmFadeOut_);
}
frmEcho_Effects& EffectDialogs::newEcho() {
    return renewed(frmEcho_Effects_);
}

void EffectDialogs::setEnabled(bool enabled) {
    for (QWidget* form :
         std::initializer_list<QWidget*>{frmEffects_, frmFadeIn_, frmFadeOut_, frmEcho_Effects_}) {
        if (!form) continue;
        form->setEnabled(enabled);
        if (enabled) form->close();
    }
}

}  // namespace effects
