// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace ports {

/// What a command tells and asks a person; each call returns when it is answered.
class Boxes {
  public:
    virtual ~Boxes() = default;

    virtual void showMessage(const QString& text) = 0;  ///< OK, no icon
    virtual bool askYesNo(const QString& text, const QString& title) = 0;
    /// OK and Cancel with the exclamation icon; true for OK.
    virtual bool warnOkCancel(const QString& text, const QString& title) = 0;
    virtual QString inputBox(const QString& prompt, const QString& title) = 0;
    /// A folder as a command gets it; empty = cancelled.
    virtual QString browseForFolder(const QString& prompt) = 0;
};

}  // namespace ports
