// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>

#include "wizard/Host.h"

namespace wizard {

/// The steps taken for one file, one after the other, whatever becomes of them: a step that fails
/// is passed over. The host hears of the first one, which is the cause of those that follow.
class Attempts {
  public:
    explicit Attempts(Host& host) : host_(host) {}

    /// Takes a step; false where it failed.
    template <typename Step>
    bool operator()(Step&& step) {
        try {
            step();
            return true;
        } catch (const std::exception& error) {
            if (!reported_) host_.stepFailed(QString::fromUtf8(error.what()));
            reported_ = true;
            return false;
        }
    }

  private:
    Host& host_;
    bool reported_ = false;
};

}  // namespace wizard
