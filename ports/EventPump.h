// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace ports {

/// Lets whoever started long work see and stop it.
class EventPump {
  public:
    virtual ~EventPump() = default;

    /// Lets pending events be handled.
    virtual void yield() = 0;
    /// Lets what is shown be drawn, but takes no input.
    virtual void repaint() = 0;
    /// Whether nobody waits for the work any more, as when its window was closed: it then ends
    /// after the file in hand, and says and asks nothing.
    virtual bool closing() const = 0;
};

}  // namespace ports
