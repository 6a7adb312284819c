// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ProgressBar.h"

#include <algorithm>

#include <QStyleOptionProgressBar>
#include <QStylePainter>

namespace widgets {
namespace {

constexpr int finePart = 1000;  // steps drawn for one of the bar's own

}  // namespace

void ProgressBar::setFraction(double fraction) {
    fraction_ = fraction;
    update();
}

void ProgressBar::paintEvent(QPaintEvent* event) {
    const int pieces = maximum() - minimum();
    if (fraction_ < 0 || pieces <= 0) {
        QProgressBar::paintEvent(event);
        return;
    }
    QStyleOptionProgressBar option;
    initStyleOption(&option);
    const double drawn =
        std::clamp<double>(value() - minimum() - 1 + std::min(fraction_, 2.0), 0, pieces);
    option.minimum = 0;
    option.maximum = pieces * finePart;
    option.progress = static_cast<int>(drawn * finePart);
    QStylePainter(this).drawControl(QStyle::CE_ProgressBar, option);
}

}  // namespace widgets
