// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/batch/EffectStep.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "app/modules/modMain.h"
#include "effects/engine/Editor.h"
#include "platform/Error.h"

namespace effects {
namespace {

// What the echo gets besides its settings: the cutoff in Hz and the number of repeats.
constexpr float echoCutoff = 8000;
constexpr std::int32_t echoCount = 10;

std::int32_t rounded(double value) {
    return static_cast<std::int32_t>(std::lrint(value));  // half to even
}

std::int32_t difference(std::int32_t from, std::int32_t what) {
    const std::int64_t exact = std::int64_t{from} - what;
    if (exact < std::numeric_limits<std::int32_t>::min() ||
        exact > std::numeric_limits<std::int32_t>::max())
        throw platform::Error("The fade begins too far before the start of the sound.");
    return static_cast<std::int32_t>(exact);
}

void openSelection(Editor& editor, const CallGuard& guard) {
    guard([&] { editor.SetSelectionActive(false); });
    guard([&] { editor.SetSelectionActive(true); });
}

void amplifyMinus(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    selectWholeFile(editor, guard);
    settings.value = 100 - settings.value;
    guard([&] { editor.Amplify(static_cast<float>(settings.value)); });
}

void amplifyPlus(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    selectWholeFile(editor, guard);
    settings.value = settings.value + 100;
    guard([&] { editor.Amplify(static_cast<float>(settings.value)); });
}

void normalize(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    selectWholeFile(editor, guard);
    guard([&] { editor.Normalize(static_cast<float>(settings.value), true); });
}

void silenceFront(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    guard([&] { editor.SetSelectionStart(0); });
    guard([&] { editor.InsertSilence(rounded(settings.value)); });
}

void silenceEnd(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    guard([&] { editor.SetSelectionStart(editor.GetLength()); });
    guard([&] { editor.InsertSilence(rounded(settings.value)); });
}

void trim(Editor& editor, EffectSettings&, const CallGuard& guard) {
    selectWholeFile(editor, guard);
    guard([&] { editor.TrimSilence(-20, 100, 2); });
}

void fadeIn(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    openSelection(editor, guard);
    guard([&] { editor.SetSelectionStart(0); });
    guard([&] { editor.SetSelectionEnd(editor.TimeToPosition(settings.fadeMs)); });
    guard([&] { editor.Fade(settings.level, 100); });
    guard([&] { editor.SetSelectionActive(false); });
}

void fadeOut(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    openSelection(editor, guard);
    guard([&] {
        settings.fadeOutStart =
            difference(editor.GetLength(), editor.TimeToPosition(settings.fadeMs));
    });
    guard([&] { editor.SetSelectionStart(settings.fadeOutStart); });
    guard([&] { editor.SetSelectionEnd(editor.GetLength()); });
    guard([&] { editor.Fade(100, settings.level); });
    guard([&] { editor.SetSelectionActive(false); });
}

void echo(Editor& editor, EffectSettings& settings, const CallGuard& guard) {
    const EchoValues& with = settings.echo;
    selectWholeFile(editor, guard);
    guard([&] { editor.Echo(with.time, with.depth, with.gain, with.rate, echoCutoff, echoCount); });
}

using enum EffectId;
constexpr std::array table = {
    Effect{
        AmplifyMinus, "amplify-minus", modMain::ModeAmplifyMinus, {10, 90, 45, "%"}, amplifyMinus},
    Effect{AmplifyPlus, "amplify-plus", modMain::ModeAmplifyPlus, {10, 90, 45, "%"}, amplifyPlus},
    Effect{Normalize, "normalize", modMain::ModeNormalize, {10, 100, 50, "%"}, normalize},
    Effect{SilenceFront,
           "silence-front",
           modMain::ModeSilenceFront,
           {100, 5000, 1000, "Ms"},
           silenceFront},
    Effect{SilenceEnd, "silence-end", modMain::ModeSilenceEnd, {100, 5000, 1000, "Ms"}, silenceEnd},
    Effect{Trim, "trim", modMain::ModeNone, {}, trim},
    Effect{FadeIn, "fade-in", modMain::ModeNone, {}, fadeIn},
    Effect{FadeOut, "fade-out", modMain::ModeNone, {}, fadeOut},
    Effect{Echo, "echo", modMain::ModeNone, {}, echo},
};

template <class Predicate>
const Effect* firstEffect(Predicate fits) {
    const auto found = std::find_if(table.begin(), table.end(), fits);
    return found == table.end() ? nullptr : &*found;
}

}  // namespace

void callStrictly(const std::function<void()>& call) {
    call();
}

std::span<const Effect> allEffects() {
    return table;
}

const Effect& effectOf(EffectId id) {
    return *firstEffect([id](const Effect& effect) { return effect.id == id; });
}

const Effect* effectOfMode(std::int16_t mode) {
    if (mode == modMain::ModeNone) return nullptr;
    return firstEffect([mode](const Effect& effect) { return effect.mode == mode; });
}

const Effect* effectNamed(std::string_view name) {
    return firstEffect([name](const Effect& effect) { return effect.name == name; });
}

void selectWholeFile(Editor& editor, const CallGuard& guard) {
    guard([&] { editor.SelectWholeFile(); });
}

void fadeInSelection(Editor& editor, const CallGuard& guard) {
    guard([&] { editor.Fade(0, 100); });
}

void fadeOutSelection(Editor& editor, const CallGuard& guard) {
    guard([&] { editor.Fade(100, 0); });
}

void autoFadeInOut(Editor& editor, const CallGuard& guard) {
    openSelection(editor, guard);
    guard([&] { editor.SetSelectionStart(0); });
    guard([&] { editor.SetSelectionEnd(rounded(editor.GetLength() / 6.0)); });
    fadeInSelection(editor, guard);
    openSelection(editor, guard);
    guard([&] {
        const double length = editor.GetLength();
        editor.SetSelectionStart(rounded(length - length / 6.0));
    });
    guard([&] { editor.SetSelectionEnd(editor.GetLength()); });
    fadeOutSelection(editor, guard);
    guard([&] { editor.SetSelectionActive(false); });
}

}  // namespace effects
