// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SkinButton.h"

#include <algorithm>

#include <QKeyEvent>

namespace widgets {

SkinButton::SkinButton(QWidget* parent) : QPushButton(parent) {
    setAutoDefault(false);
}

QSize SkinButton::sizeHint() const {
    const QSize own = QPushButton::sizeHint();
    const auto width = [this](const QString& caption) {
        return fontMetrics().size(Qt::TextShowMnemonic, caption).width();
    };
    return own + QSize(std::max(0, width(longestCaption_) - width(text())), 0);
}

void SkinButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QPushButton::keyPressEvent(event);
}

}  // namespace widgets
