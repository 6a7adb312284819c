// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SkinSlider.h"

#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleOptionSlider>

#include "widgets/Dispatch.h"

namespace widgets {

SkinSlider::SkinSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    connect(this, &QSlider::valueChanged, this, guarded([this](int value) {
                if (!onlyShown_) Q_EMIT Changed(value);
            }));
}

void SkinSlider::setShownValue(int value) {
    if (isSliderDown()) return;
    const QScopedValueRollback<bool> guard(onlyShown_, true);
    setValue(value);
}

int SkinSlider::valueAt(int x) const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const QRect handle =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    return QStyle::sliderValueFromPosition(minimum(), maximum(),
                                           x - groove.x() - handle.width() / 2,
                                           groove.width() - handle.width(), option.upsideDown);
}

// The handle jumps to the mouse first, so that the base class finds the mouse on it and drags.
// Changed comes when the press is done with: who hears it may let the release through at once.
void SkinSlider::mousePressEvent(QMouseEvent* event) {
    const int before = value();
    {
        const QScopedValueRollback<bool> guard(onlyShown_, true);
        if (event->button() == Qt::LeftButton)
            setSliderPosition(valueAt(event->position().toPoint().x()));
        QSlider::mousePressEvent(event);
    }
    if (value() != before) Q_EMIT Changed(value());
}

}  // namespace widgets
