// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ports/Boxes.h"

class QWidget;

namespace ports {

/// Real boxes on the screen. Window thread.
class WindowBoxes : public Boxes {
  public:
    /// Folders are asked for in the window's name; it must outlive this.
    explicit WindowBoxes(QWidget& window) : window_(window) {}

    void showMessage(const QString& text) override;
    bool askYesNo(const QString& text, const QString& title) override;
    bool warnOkCancel(const QString& text, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title) override;
    QString browseForFolder(const QString& prompt) override;

  private:
    QWidget& window_;
};

}  // namespace ports
