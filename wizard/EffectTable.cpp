// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/EffectTable.h"

#include <algorithm>
#include <utility>

#include <QRegularExpression>

namespace wizard {

using namespace Qt::Literals::StringLiterals;

namespace {

EffectRow number(int checkBox, QString caption, std::vector<int> numbers, int shown,
                 EffectValue Settings::*value) {
    EffectRow row;
    row.checkBox = checkBox;
    row.code = static_cast<std::int16_t>(checkBox);
    row.caption = std::move(caption);
    row.kind = EffectKind::Number;
    row.numbers = std::move(numbers);
    row.shown = shown;
    row.value = value;
    return row;
}

EffectRow seconds(int checkBox, std::int16_t code, QString caption, std::vector<int> lengths,
                  int shown, std::int32_t Settings::*milliseconds, QString before, QString after) {
    EffectRow row = number(checkBox, std::move(caption), std::move(lengths), shown, nullptr);
    row.code = code;
    row.kind = EffectKind::Seconds;
    row.milliseconds = milliseconds;
    row.before = std::move(before);
    row.after = std::move(after);
    return row;
}

EffectRow plain(int checkBox, QString caption, EffectKind kind) {
    EffectRow row = number(checkBox, std::move(caption), {}, 0, nullptr);
    row.kind = kind;
    return row;
}

const std::vector<int> FadeSeconds = {5, 10, 15, 20, 25, 30, 40, 50};
const std::vector<int> OverlapSeconds = {5, 10, 15, 20, 30, 40, 50};
const std::vector<int> Shifts = {10,  20,  30,  40,  50,  60,  70,  80,  90, 100,
                                 110, 120, 130, 140, 150, 160, 170, 180, 190};

std::vector<EffectRow> buildRows() {
    using S = Settings;
    return {
        number(1, u"Amplify -"_s, {20, 40, 60, 80}, 60, &S::amp_minus),
        number(2, u"Amplify +"_s, {110, 120, 140, 160}, 140, &S::amp_plus),
        number(3, u"Chorus"_s, {10, 30, 50, 70}, 50, &S::chorus_val),
        number(4, u"Compressor"_s, {10, 30, 50, 70}, 50, &S::comp_val),
        number(5, u"Echo"_s, {25, 45, 65, 75}, 75, &S::echo_val),
        number(6, u"Expander"_s, {2, 4, 8, 10}, 4, &S::exp_val),
        number(7, u"Flanger"_s, {10, 30, 50, 70}, 50, &S::flan_val),
        // Shares the Flanger's setting on purpose: the latest of the two holds.
        number(8, u"Normalize"_s, {40, 60, 80, 100}, 100, &S::flan_val),
        number(9, u"Pitch Shift -"_s, {10, 20, 40, 60, 80}, 40, &S::pitch_minus),
        number(10, u"Pitch Shift +"_s, {110, 120, 140, 160, 180}, 140, &S::pitch_plus),
        number(11, u"Reverb"_s, {25, 45, 65, 75}, 75, &S::revb_val),
        number(12, u"Stretch w/o -"_s, {20, 40, 60, 80}, 80, &S::str_minus2),
        number(13, u"Stretch w/o +"_s, {110, 120, 140, 160}, 120, &S::str_plus2),
        number(14, u"Stretch -"_s, {20, 40, 60, 80}, 80, &S::str_minus),
        number(15, u"Stretch +"_s, {110, 120, 140, 160}, 120, &S::str_plus),
        number(16, u"Vibrato"_s, {20, 40, 60, 80}, 40, &S::vib_val),
        seconds(17, 17, u"Fade -"_s, FadeSeconds, 30, &S::fadeOutMs, u"end "_s, u" secs of file"_s),
        seconds(18, 18, u"Fade +"_s, FadeSeconds, 30, &S::fadeInMs, u"front "_s,
                u" secs of file"_s),
        plain(19, u"Invert"_s, EffectKind::Bare),
        plain(20, u"Mix Channels"_s, EffectKind::Bare),
        plain(21, u"Reverse"_s, EffectKind::Bare),
        number(22, u"Time Shift"_s, Shifts, 70, &S::time_shift),
        seconds(23, 57, u"Cross Fade"_s, OverlapSeconds, 20, &S::crossfade_value, {},
                u" secs crossfade"_s),
        plain(24, u"Trim Silence"_s, EffectKind::Silent),
    };
}

}  // namespace

QString EffectRow::text(int number) const {
    return before + QString::number(number) + after;
}

QStringList EffectRow::texts() const {
    QStringList list;
    for (const int number : numbers) list << text(number);
    return list;
}

std::span<const EffectRow> effectRows() {
    static const std::vector<EffectRow> rows = buildRows();
    return rows;
}

const EffectRow* effectWithCode(std::int16_t code) {
    const auto rows = effectRows();
    const auto row = std::ranges::find(rows, code, &EffectRow::code);
    return row == rows.end() ? nullptr : &*row;
}

void storeValue(const EffectRow& row, const QString& text, Settings& settings) {
    if (row.value) settings.*row.value = leadingNumber(text);
    if (!row.milliseconds) return;
    for (const int length : row.numbers)
        if (text == row.text(length)) settings.*row.milliseconds = length * 1000;
}

double leadingNumber(const QString& text) {
    static const QRegularExpression number(
        u"^\\s*([+-]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][+-]?\\d+)?)"_s);
    return number.match(text).captured(1).toDouble();
}

}  // namespace wizard
