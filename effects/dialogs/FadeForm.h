// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "effects/batch/EffectStep.h"
#include "effects/dialogs/EffectForm.h"

namespace Ui {
class FadeForm;
}

namespace effects {

/// What the two fade dialogs have in common: the length of the fade and the level at its quiet end,
/// applied to every selected file. The menu handler gives it its caption and fills the list.
class FadeForm : public EffectForm {
    Q_OBJECT
  public:
    ~FadeForm() override;

    /// Adds the lengths to Combo5 and shows the first one.
    void fillLengths(const QStringList& lengths);

    void Command1_Click() override;

  protected:
    struct Kind {
        QString name;  ///< of the form
        EffectId effect;
        QStringList lengths;         ///< that a typed length is looked up in
        std::int32_t& milliseconds;  ///< the shared setting
        QString quietEnd;            ///< "Starting" or "Ending"
    };
    FadeForm(const Kind& kind, BatchRunner& runner, QWidget* parent);

    /// One file's fade was applied with these settings.
    virtual void applied(const EffectSettings&) {}

  private:
    void applyFade(Editor& editor, const CallGuard& guard);

    const Kind kind_;
    std::unique_ptr<Ui::FadeForm> ui_;
};

}  // namespace effects
