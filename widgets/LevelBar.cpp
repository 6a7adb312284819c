// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/LevelBar.h"

#include <algorithm>

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace widgets {

LevelBar::LevelBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::setMinimum(int minimum) {
    setRange(minimum, std::max(minimum, maximum_));
}

void LevelBar::setMaximum(int maximum) {
    setRange(std::min(minimum_, maximum), maximum);
}

void LevelBar::setRange(int minimum, int maximum) {
    minimum_ = minimum;
    maximum_ = std::max(minimum, maximum);
    setValue(value_);
    update();
}

void LevelBar::setValue(int value) {
    const int clamped = std::clamp(value, minimum_, maximum_);
    if (clamped == value_) return;
    value_ = clamped;
    update();
}

QSize LevelBar::sizeHint() const {
    return {160, 14};
}

QSize LevelBar::minimumSizeHint() const {
    return {40, 10};
}

void LevelBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF groove = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(groove, 3, 3);
    const double span = maximum_ - minimum_;
    if (span <= 0 || value_ <= minimum_) return;
    QRectF filled = groove.adjusted(2, 2, -2, -2);
    filled.setWidth(filled.width() * (value_ - minimum_) / span);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(filled, 2, 2);
}

}  // namespace widgets
