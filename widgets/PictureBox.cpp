// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/PictureBox.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace widgets {

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {}

void PictureBox::setPainter(Painter painter) {
    painter_ = std::move(painter);
    update();
}

QSize PictureBox::sizeHint() const {
    return {240, 96};
}

QSize PictureBox::minimumSizeHint() const {
    return {96, 48};
}

void PictureBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    if (painter_) painter_(painter, size());
}

void PictureBox::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    Q_EMIT pointed(std::clamp(event->position().x() / std::max(1, width()), 0.0, 1.0));
}

void PictureBox::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) return event->ignore();
    Q_EMIT pointed(std::clamp(event->position().x() / std::max(1, width()), 0.0, 1.0));
}

}  // namespace widgets
