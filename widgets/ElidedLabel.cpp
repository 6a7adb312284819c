// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include "widgets/PlainToolTip.h"

namespace widgets {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QStringLiteral("abc…xyz")), fontMetrics().height()};
}

QString ElidedLabel::shown() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && shown() != text()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(text()),
                           this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QString line = shown();
    const auto side = line.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    style()->drawItemText(&painter, contentsRect(),
                          int(side | Qt::AlignAbsolute | Qt::AlignVCenter), palette(), isEnabled(),
                          line, foregroundRole());
}

}  // namespace widgets
