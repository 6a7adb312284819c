// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The wizard's fixed sentences, letter for letter.
namespace wizard::texts {

inline constexpr QStringView TargetPathMissing = u"Target path MUST be set before proceeding!";
inline constexpr QStringView Completed = u"Transformation completed!";
inline constexpr QStringView NoFiles =
    u"ERROR: there are no files loaded in the playlist to transform!";

inline constexpr QStringView StatusIdle = u"Status: idle";
inline constexpr QStringView StatusApplying =
    u"Status: applying effects if selelected (i.e.fade, trim, normalization,format functions) ...";
inline constexpr QStringView StatusFirstRound =
    u"Status: starting first round of the 'pre-burn crossfade process' ...";
inline constexpr QStringView StatusSecondRound =
    u"Status: starting second round of the 'pre-burn crossfade process' ...";

inline constexpr QStringView ReadyTitle = u"Ready?";
inline constexpr QStringView ReadyQuestion =
    u"This series of functions is applied to your loaded playlist but leaves orgininal files "
    u"intact\r\n(copys before applying cross fade).\r\n\r\n"
    u"Please be sure to read the help on this process before proceeding!\r\n\r\nReady?  ";
inline constexpr QStringView BurnTitle = u"Ready to burn CD?";
inline constexpr QStringView BurnQuestion = u"Ready to burn your cross fade configured Audio CD?  ";

inline constexpr QStringView TooManyFiles = u" CAUTION: May exceed limitations!";

inline constexpr QStringView MoreInfo =
    u"This cross fade wizard allows your playlist (files) to be crossfaded then burned to a Audio "
    u"CD to reflect this effect.\r\n"
    u"In digital audio production, a crossfade is editing that makes a smooth transition between "
    u"two audio files.\r\n"
    u"The edit consists of fading out one source file while fading in the other at the same "
    u"time.\r\n"
    u"This method creates a smooth transition because for a short period of time the listener "
    u"hears both files playing simultaneously.\r\n"
    u"A crossfade is the opposite of a butt splice; whereas, the end of the first file is joined "
    u"to the beginning of the second file.\r\n"
    u"What I believe you're going to find is that crossfading is an art form and there are few "
    u"rules of right or wrong.\r\n"
    u"Once one understands and becomes proficient at a technique, the rules disappear and the"
    u" techniques can be used in new, fresh and creative ways. Parameters such as the length of a "
    u"crossfade are  artistic judgments in the end.\r\n"
    u"It is suggested that you use the default values of fade and crossfade length, as well as to "
    u"select the TRIM SILENCE function until you are 'tuned in' to the process!";

/// The target folder holds one of the files to transform under the name of a result.
inline QString originalInTheWay(const QString& path) {
    return QStringLiteral(
               "The target folder holds the original file %1, which would be written over. "
               "Nothing was changed: please choose another target path.")
        .arg(path);
}

}  // namespace wizard::texts
