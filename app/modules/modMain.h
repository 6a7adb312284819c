// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace modMain {

/// Which effect the common value dialog applies.
enum EffectModeValue : std::int16_t {
    ModeNone = 0,
    ModeAmplifyMinus = 1,
    ModeAmplifyPlus = 2,
    ModeNormalize = 4,
    ModeSilenceFront = 16,
    ModeSilenceEnd = 17,
};

/// The shared effect settings: written by the menu handlers and the dialogs, read by the batch run.
/// Window thread only. These are the program's only globals.
extern std::int16_t EffectMode;     ///< an EffectModeValue; 0 outside a dialog's life
extern std::int16_t SelectedCount;  ///< entries counted at the start of a run
extern std::int32_t FadeInMs;       ///< milliseconds
extern std::int32_t FadeOutMs;      ///< milliseconds
extern std::int32_t FadeOutStart;   ///< first frame of the fade-out of the file in hand
extern double EffectValue;  ///< percent or milliseconds; the amplify modes rewrite it per file

}  // namespace modMain
