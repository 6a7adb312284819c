// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

namespace widgets {

/// A push button of the skin. Its caption is its text, exactly; the look comes from the style sheet
/// by class name. Space and Enter press it while it has the focus.
class SkinButton : public QPushButton {
    Q_OBJECT
    /// The longest caption that it will bear: it is as wide as that one needs, whatever it bears.
    Q_PROPERTY(QString longestCaption MEMBER longestCaption_)
  public:
    explicit SkinButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QString longestCaption_;
};

}  // namespace widgets
