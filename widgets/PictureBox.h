// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QWidget>

class QPainter;

namespace widgets {

/// A plain area that somebody else draws into, with the skin's own background. It knows nothing of
/// what is drawn.
class PictureBox : public QWidget {
    Q_OBJECT
  public:
    using Painter = std::function<void(QPainter&, const QSize&)>;

    explicit PictureBox(QWidget* parent = nullptr);

    /// Called for every repaint, in device-independent pixels; an empty one leaves the background.
    void setPainter(Painter painter);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  Q_SIGNALS:
    /// The left button was pressed or dragged: where, as a part of the width, 0 to 1.
    void pointed(double x);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

  private:
    Painter painter_;
};

}  // namespace widgets
