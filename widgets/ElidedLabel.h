// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace widgets {

/// A label of one line that shortens what it shows to the room it has, with an ellipsis in the
/// middle, so that a path keeps its ends; text() stays whole, and is the tooltip where it is cut.
/// Plain text only.
class ElidedLabel : public QLabel {
    Q_OBJECT
  public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QString shown() const;
};

}  // namespace widgets
