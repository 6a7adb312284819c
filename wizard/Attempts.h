// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <utility>

#include "wizard/Host.h"
#include "wizard/Naming.h"

namespace wizard {

/// The steps taken for one file, one after the other, whatever becomes of them: a step that fails
/// is passed over. The host hears of the first one, which is the cause of those that follow.
class Attempts {
  public:
    Attempts(Host& host, const QString& path) : host_(host), name_(bareName(path)) {}

    /// Takes a step; false where it failed.
    template <typename Step>
    bool operator()(Step&& step) {
        try {
            step();
            return true;
        } catch (const std::exception& error) {
            report(QString::fromUtf8(error.what()));
            return false;
        }
    }

  private:
    void report(const QString& sentence) {
        if (std::exchange(reported_, true)) return;
        const bool named = sentence.contains(name_);
        host_.stepFailed(named ? sentence : name_ + QStringLiteral(": ") + sentence);
    }

    Host& host_;
    QString name_;
    bool reported_ = false;
};

}  // namespace wizard
