// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>
#include <utility>

#include "effects/engine/Editor.h"
#include "wizard/Naming.h"
#include "wizard/RunView.h"
#include "wizard/Session.h"

namespace wizard {

/// The steps taken for one file, one after the other, whatever becomes of them: a step that fails
/// is passed over. The view hears of the first one, which is the cause of those that follow.
class Attempts {
  public:
    Attempts(RunView& view, const QString& path) : view_(view), name_(bareName(path)) {}

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
        view_.stepFailed(named ? sentence : name_ + QStringLiteral(": ") + sentence);
    }

    RunView& view_;
    QString name_;
    bool reported_ = false;
};

/// Saves as the engine does, but never over one of the originals: that is a platform::Error, and
/// the file is left as it is.
void guardedSave(effects::Editor& editor, const Originals& originals, const QString& path,
                 bool selectionOnly);

}  // namespace wizard
