// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/RunBar.h"

#include <cmath>

#include "ui_frmFadeWizard2.h"

namespace wizard {

void RunBar::setMaximum(int pieces) {
    ui_.AmpBar->setMaximum(pieces);
}

void RunBar::setValue(int pieces) {
    ui_.AmpBar->setValue(pieces);
    setFraction(0);
}

void RunBar::setFraction(double fraction) {
    ui_.AmpBar2->setValue(static_cast<int>(std::lround(100 * fraction)));
}

void RunBar::setStatus(const QString& text) {
    ui_.lblStaus->setText(text);
}

}  // namespace wizard
