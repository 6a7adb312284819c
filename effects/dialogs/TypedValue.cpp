// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/dialogs/TypedValue.h"

#include <algorithm>

#include <QKeyEvent>
#include <QSlider>

namespace effects {
namespace {

constexpr qint64 pauseMs = 1500;  // longer than this, and a new number begins
constexpr qsizetype mostDigits = 6;

}  // namespace

TypedValue::TypedValue(QSlider* slider) : QObject(slider), slider_(slider) {
    slider->installEventFilter(this);
}

bool TypedValue::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::FocusOut) digits_.clear();
    if (event->type() != QEvent::KeyPress) return false;
    return type(static_cast<QKeyEvent*>(event)->text());
}

bool TypedValue::type(const QString& character) {
    if (character.size() != 1 || character[0] < u'0' || character[0] > u'9') {
        digits_.clear();
        return false;
    }
    if (!sinceLast_.isValid() || sinceLast_.elapsed() > pauseMs) digits_.clear();
    sinceLast_.start();
    if (digits_.size() < mostDigits) digits_ += character;
    const int value = std::min(digits_.toInt(), slider_->maximum());
    if (value >= slider_->minimum()) slider_->setValue(value);
    return true;
}

}  // namespace effects
