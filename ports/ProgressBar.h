// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace ports {

/// How far a command is, in pieces of work, and one line of text on what it does. On the thread of
/// the flow that tells it.
class ProgressBar {
  public:
    virtual ~ProgressBar() = default;

    virtual void setShown(bool shown) = 0;
    virtual void setMaximum(int pieces) = 0;
    /// Pieces begun. Takes the fraction back.
    virtual void setValue(int pieces) = 0;
    /// How much is done of the piece that the value counts, 0 to 1, or of the one after it, 1 to 2.
    virtual void setFraction(double fraction) = 0;
    virtual void setStatus(const QString& text) = 0;
};

}  // namespace ports
