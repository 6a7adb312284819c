// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/modules/modMain.h"

namespace modMain {

std::int16_t EffectMode = ModeNone;
std::int16_t SelectedCount = 0;
std::int32_t FadeInMs = 0;
std::int32_t FadeOutMs = 0;
std::int32_t FadeOutStart = 0;
double EffectValue = 0;

}  // namespace modMain
