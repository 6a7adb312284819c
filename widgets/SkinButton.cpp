// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SkinButton.h"

#include <QKeyEvent>

namespace widgets {

SkinButton::SkinButton(QWidget* parent) : QPushButton(parent) {
    setAutoDefault(false);
}

void SkinButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QPushButton::keyPressEvent(event);
}

}  // namespace widgets
