// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include "wizard/Settings.h"

namespace wizard {

/// What the four format lists offer, in order, and what each shows first.
QStringList formatTexts();     ///< "WAV" first
QStringList frequencyTexts();  ///< "44100" first
QString initialFrequency();
QString frequencyText(int hertz);  ///< the entry for a rate; empty where there is none
QStringList bitRateTexts(const QString& format);  ///< empty for a format that does not exist
QString initialBitRate(const QString& format);    ///< "16-bit" for WAV, "128-bit" for MP3
QStringList channelTexts();
QString initialChannels();

/// The ending of the files of a format, without a dot; empty for a format that does not exist.
QString fileEnding(const QString& format);

/// Reads the format choices into Freq, Chan and my_wav_bitrate. A text that is no entry of its list
/// leaves its setting as it was; the channels are 2 unless they read "Mono". The entry "11050"
/// stands for 11025 Hz.
void readFormat(const Options& options, Settings& settings);

}  // namespace wizard
