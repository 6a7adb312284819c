// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

namespace widgets {

/// A push button of the skin. Its caption is its text, exactly; the look comes from the style sheet
/// by class name. Space and Enter press it while it has the focus.
class SkinButton : public QPushButton {
    Q_OBJECT
  public:
    explicit SkinButton(QWidget* parent = nullptr);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace widgets
