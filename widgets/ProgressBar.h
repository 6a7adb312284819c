// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProgressBar>

namespace widgets {

/// A progress bar over counted pieces of work that can also show how far the piece in hand is. Its
/// value and maximum stay whole numbers: a value of 3 says that the third piece has been begun.
class ProgressBar : public QProgressBar {
    Q_OBJECT
    Q_PROPERTY(double fraction READ fraction WRITE setFraction)
  public:
    using QProgressBar::QProgressBar;

    /// How much of the piece in hand is done, 0 to 1: the bar is then drawn from the piece before
    /// it on. 1 to 2: the same for a piece that the value does not count yet. A negative one takes
    /// that back: the bar is drawn at its value.
    void setFraction(double fraction);
    double fraction() const { return fraction_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double fraction_ = -1;
};

}  // namespace widgets
