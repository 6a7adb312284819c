// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ports/EventPump.h"

namespace ports {

/// The event loop of the windows. Window thread.
class WindowEvents : public EventPump {
  public:
    /// `closing` is the window's own flag; it must outlive this.
    explicit WindowEvents(const bool& closing) : closing_(closing) {}

    void yield() override;
    void repaint() override;
    bool closing() const override { return closing_; }

  private:
    const bool& closing_;
};

}  // namespace ports
