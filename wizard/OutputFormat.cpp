// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/OutputFormat.h"

#include <array>
#include <span>

namespace wizard {

using namespace Qt::Literals::StringLiterals;

namespace {

struct Frequency {
    int shown;
    int hertz;
};

constexpr std::array Frequencies = {
    Frequency{8000, 8000},   Frequency{11050, 11025}, Frequency{16000, 16000},
    Frequency{22050, 22050}, Frequency{24000, 24000}, Frequency{32000, 32000},
    Frequency{44100, 44100}, Frequency{48000, 48000},
};

constexpr std::array Mp3Rates = {8, 16, 24, 32, 48, 56, 64, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr std::size_t WavDepths = 2;  // the first two of them

QString bitText(int bits) {
    return QString::number(bits) + u"-bit"_s;
}

}  // namespace

QStringList formatTexts() {
    return {u"WAV"_s, u"MP3"_s};
}

QStringList frequencyTexts() {
    QStringList texts;
    for (const auto& frequency : Frequencies) texts << QString::number(frequency.shown);
    return texts;
}

QString initialFrequency() {
    return u"44100"_s;
}

QString frequencyText(int hertz) {
    for (const auto& frequency : Frequencies)
        if (frequency.hertz == hertz) return QString::number(frequency.shown);
    return {};
}

QStringList bitRateTexts(const QString& format) {
    std::span<const int> rates = Mp3Rates;
    if (format == u"WAV"_s)
        rates = rates.first(WavDepths);
    else if (format != u"MP3"_s)
        rates = {};
    QStringList texts;
    for (const int rate : rates) texts << bitText(rate);
    return texts;
}

QString initialBitRate(const QString& format) {
    return format == u"MP3"_s ? u"128-bit"_s : u"16-bit"_s;
}

QStringList channelTexts() {
    return {u"Mono"_s, u"Stereo"_s};
}

QString initialChannels() {
    return u"Stereo"_s;
}

QString fileEnding(const QString& format) {
    return formatTexts().contains(format) ? format.toLower() : QString();
}

void readFormat(const Options& options, Settings& settings) {
    for (const int rate : Mp3Rates)
        if (options.bitRate == bitText(rate)) settings.my_wav_bitrate = rate;
    for (const auto& frequency : Frequencies)
        if (options.frequency == QString::number(frequency.shown)) settings.Freq = frequency.hertz;
    settings.Chan = options.channels == u"Mono"_s ? 1 : 2;
}

}  // namespace wizard
