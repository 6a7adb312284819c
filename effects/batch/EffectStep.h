// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace effects {

class Editor;

/// The settings of an echo, in the units of Editor::Echo.
struct EchoValues {
    float time = 7;    ///< tenths of a second
    float depth = 40;  ///< percent
    float gain = 10;   ///< percent
    float rate = 75;   ///< percent
};

/// All that an effect step reads. A plain value: copy it where every file is to get the same.
struct EffectSettings {
    double value = 0;               ///< percent or milliseconds; the amplify steps rewrite it
    std::int32_t fadeMs = 0;        ///< length of a fade in milliseconds
    float level = 0;                ///< percent at the quiet end of a fade
    EchoValues echo;                ///< read by the echo alone
    std::int32_t fadeOutStart = 0;  ///< written by the fade-out: the first frame of its range
};

/// How a step makes its engine calls. A batch run records an error and goes on with the next call;
/// the command line lets it end the file.
using CallGuard = std::function<void(const std::function<void()>&)>;

/// The guard that lets every error through.
void callStrictly(const std::function<void()>& call);

enum class EffectId {
    AmplifyMinus,
    AmplifyPlus,
    Normalize,
    SilenceFront,
    SilenceEnd,
    Trim,
    FadeIn,
    FadeOut,
    Echo,
};

/// The bounds of an effect's one value, as its slider has them. All zero where it has none.
struct ValueRange {
    int minimum = 0;
    int maximum = 0;
    int initial = 0;
    const char* unit = "";
};

/// One effect: what it is called, what it may be set to, and what it does to the file that the
/// engine holds. It neither loads nor saves.
struct Effect {
    EffectId id;
    std::string_view name;  ///< on the command line
    std::int16_t mode;      ///< its modMain::EffectModeValue; ModeNone where it has none
    ValueRange value;
    void (*apply)(Editor&, EffectSettings&, const CallGuard&);
};

/// Every effect there is, in the order in which the command line lists them.
std::span<const Effect> allEffects();
const Effect& effectOf(EffectId id);
/// Null where no effect has that mode or name.
const Effect* effectOfMode(std::int16_t mode);
const Effect* effectNamed(std::string_view name);

/// Makes the selection active from 0 to the sound's length.
void selectWholeFile(Editor& editor, const CallGuard& guard);

/// Fades in over the first sixth of the sound and out over its last sixth, from and to silence.
/// Leaves the selection inactive and saves nothing.
void autoFadeInOut(Editor& editor, const CallGuard& guard);
void fadeInSelection(Editor& editor, const CallGuard& guard);   ///< 0 % to 100 %
void fadeOutSelection(Editor& editor, const CallGuard& guard);  ///< 100 % to 0 %

}  // namespace effects
