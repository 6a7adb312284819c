// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/frmFadeIn.h"

#include "app/modules/modMain.h"
#include "effects/dialogs/FadeLengths.h"

using namespace Qt::Literals::StringLiterals;

namespace effects {

frmFadeIn::frmFadeIn(BatchRunner& runner, QWidget* parent)
    : FadeForm(
          {u"frmFadeIn"_s, EffectId::FadeIn, fadeInLengths(), modMain::FadeInMs, u"Starting"_s},
          runner, parent) {}

}  // namespace effects
