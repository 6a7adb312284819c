// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>

namespace widgets {

/// A horizontal slider of the skin. A click on the groove goes straight to that place. Changed is
/// raised for every new value, whoever set it, but for those given with setShownValue: so a display
/// that follows something can share the slider with the user who steers it.
class SkinSlider : public QSlider {
    Q_OBJECT
  public:
    explicit SkinSlider(QWidget* parent = nullptr);

    /// Moves the handle without Changed; does nothing while the user holds it.
    void setShownValue(int value);

  Q_SIGNALS:
    void Changed(int value);

  protected:
    void mousePressEvent(QMouseEvent* event) override;

  private:
    int valueAt(int x) const;

    bool onlyShown_ = false;
};

}  // namespace widgets
