// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace widgets {

/// A bar filled from the left to its value: a level meter, or a progress bar without text.
class LevelBar : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(int maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(int value READ value WRITE setValue)
  public:
    explicit LevelBar(QWidget* parent = nullptr);

    int minimum() const { return minimum_; }
    int maximum() const { return maximum_; }
    int value() const { return value_; }
    void setMinimum(int minimum);
    void setMaximum(int maximum);
    void setRange(int minimum, int maximum);
    void setValue(int value);  ///< clamped to the range

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int minimum_ = 0;
    int maximum_ = 100;
    int value_ = 0;
};

}  // namespace widgets
