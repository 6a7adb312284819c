// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <utility>

#include <QObject>

namespace player {

/// Lets any thread have something done on the thread that this was made on, by an event. It carries
/// no data: what there is to tell waits behind a lock of the teller's.
class Wake : public QObject {
    Q_OBJECT
  public:
    explicit Wake(std::function<void()> call) {
        connect(this, &Wake::called, this, std::move(call), Qt::QueuedConnection);
    }
    /// Any thread.
    void operator()() { Q_EMIT called(); }

  Q_SIGNALS:
    void called();
};

}  // namespace player
