// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/frmFadeOut.h"

#include "app/modules/modMain.h"
#include "effects/dialogs/FadeLengths.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {

frmFadeOut::frmFadeOut(BatchRunner& runner, QWidget* parent)
    : FadeForm(
          {u"frmFadeOut"_s, EffectId::FadeOut, fadeOutLengths(), modMain::FadeOutMs, u"Ending"_s},
          runner, parent) {}

void frmFadeOut::applied(const EffectSettings& settings) {
    modMain::FadeOutStart = settings.fadeOutStart;
}

}  // namespace effects
