// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/Settings.h"

namespace wizard {

void Settings::forgetEffectValues() {
    for (EffectValue Settings::*value :
         {&Settings::amp_minus, &Settings::chorus_val, &Settings::comp_val, &Settings::exp_val,
          &Settings::flan_val, &Settings::norm_val, &Settings::pitch_minus, &Settings::pitch_plus,
          &Settings::str_minus, &Settings::str_plus, &Settings::str_minus2, &Settings::str_plus2,
          &Settings::vib_val, &Settings::echo_val, &Settings::revb_val})
        (this->*value).reset();
    workingon = 0;
}

}  // namespace wizard
