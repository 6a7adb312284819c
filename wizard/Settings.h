// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include <QString>

namespace wizard {

/// One effect's chosen value; empty = not set.
using EffectValue = std::optional<double>;

/// What the wizard remembers between its controls, for as long as its window lives. A plain value:
/// it knows nothing of the controls that fill it.
struct Settings {
    // One value per effect. The pass reads norm_val alone; the others are kept for the window.
    EffectValue amp_minus, amp_plus, chorus_val, comp_val, exp_val, flan_val, norm_val;
    EffectValue pitch_minus, pitch_plus, time_shift, vib_val, echo_val, revb_val;
    EffectValue str_minus, str_plus, str_minus2, str_plus2;

    std::int32_t fadeOutMs = 0;        ///< milliseconds; 0 = not set
    std::int32_t fadeInMs = 0;         ///< milliseconds; 0 = not set
    std::int32_t crossfade_value = 0;  ///< overlap in milliseconds; 0 = not set

    std::int16_t workingon = 0;  ///< code of the effect whose values are on show; 0 = none
    std::int32_t i_count = 0;    ///< entry in hand of the pass or of a round; Stop pushes it on

    std::int32_t Freq = 0;            ///< output sample rate in Hz
    std::int32_t Chan = 0;            ///< output channels, 1 or 2
    std::int32_t my_wav_bitrate = 0;  ///< bits per sample (WAV) or kbit/s (MP3)
    QString FileName;                 ///< output name being built, its dot kept: "Song."

    /// Forgets the effect values, as the window does whenever it becomes active, and the effect on
    /// show. amp_plus, time_shift and the three lengths stay.
    void forgetEffectValues();
};

/// What becomes of the ID tags.
enum class TagChoice { LeaveAsIs, SetNew, Strip };

/// What the pass reads of the window (or of a command line) at the moment it asks: ticks and texts,
/// as the controls show them.
struct Options {
    QString targetPath;  ///< ends in a separator; output names are appended as they are
    bool trimSilence = false;
    bool normalize = false;
    bool fadeOut = false;
    bool fadeIn = false;
    bool crossFade = false;
    bool hasPrefix = false;  ///< whether the file name prefix box holds anything
    TagChoice tags = TagChoice::LeaveAsIs;
    QString format;     ///< "WAV" or "MP3"
    QString frequency;  ///< an entry of frequencyTexts()
    QString bitRate;    ///< an entry of bitRateTexts(format)
    QString channels;   ///< "Mono" or "Stereo"
};

/// The lengths that hold where none was chosen, in milliseconds.
inline constexpr std::int32_t DefaultFadeMs = 30000;
inline constexpr std::int32_t DefaultOverlapMs = 20000;

}  // namespace wizard
