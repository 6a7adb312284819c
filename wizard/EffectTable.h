// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <QString>
#include <QStringList>

#include "wizard/Settings.h"

namespace wizard {

/// What a click on an effect's check box does.
enum class EffectKind {
    Number,   ///< offers numbers, kept as an effect value
    Seconds,  ///< offers lengths in words, kept in milliseconds
    Bare,     ///< offers nothing, but becomes the effect on show
    Silent,   ///< has no click handler at all
};

/// One effect of the wizard: its check box and the values it offers.
struct EffectRow {
    int checkBox = 0;       ///< n of the control's name, "Check<n>"
    std::int16_t code = 0;  ///< what Settings::workingon holds while its values are on show
    QString caption;
    EffectKind kind = EffectKind::Silent;
    std::vector<int> numbers;                        ///< the values or seconds on offer, in order
    int shown = 0;                                   ///< the one that is shown first
    EffectValue Settings::*value = nullptr;          ///< where a Number goes
    std::int32_t Settings::*milliseconds = nullptr;  ///< where Seconds go
    QString before, after;                           ///< the words around Seconds

    QString text(int number) const;  ///< one value as the list shows it
    QStringList texts() const;       ///< the whole list
};

/// All 24 effects in the order of their check boxes.
std::span<const EffectRow> effectRows();

/// The effect with this code, or null.
const EffectRow* effectWithCode(std::int16_t code);

/// Stores the value that a text stands for: the number it begins with, or the length whose words it
/// is exactly. A text that names no length changes nothing.
void storeValue(const EffectRow& row, const QString& text, Settings& settings);

/// The number a text begins with, after blanks: sign, digits, fraction, exponent; 0 where it begins
/// with none.
double leadingNumber(const QString& text);

}  // namespace wizard
