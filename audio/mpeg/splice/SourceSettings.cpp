// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "audio/mpeg/encode/LameEncoder.h"
#include "audio/mpeg/read/SourceFrames.h"
#include "audio/mpeg/read/SourceSound.h"
#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {
namespace {

// Average bit-rates in kbit/s that LAME's V0 to V9 give for stereo music at 44.1 kHz.
constexpr std::array<double, 10> averages = {245, 225, 190, 175, 165, 130, 115, 100, 85, 65};

constexpr double worstQuality = 9.9;

// The quality that gives about this average, straight lines between the table's.
double qualityFor(double bitsPerSecond, const FrameHeader& header) {
    const double stereo = header.channels() == 1 ? 1.75 : 1.0;
    const double kbps = bitsPerSecond / 1000 * stereo * 44100 / header.sampleRate;
    if (kbps >= averages.front()) return 0;
    for (std::size_t i = 1; i < averages.size(); ++i) {
        if (kbps < averages[i]) continue;
        const double part = (averages[i - 1] - kbps) / (averages[i - 1] - averages[i]);
        return static_cast<double>(i - 1) + part;
    }
    return 9;
}

EncoderSettings::Rate rateOf(const FrameIndex& index) {
    if (index.header().layer != 3) return EncoderSettings::Rate::Constant;
    switch (index.info() ? index.info()->vbrMethod : 0) {
        case 2:
        case 9:
            return EncoderSettings::Rate::Average;
        case 3:
        case 4:
        case 5:
        case 6:
            return EncoderSettings::Rate::Quality;
        default:
            break;
    }
    return index.variableBitRate() ? EncoderSettings::Rate::Quality
                                   : EncoderSettings::Rate::Constant;
}

// What an ABR encoder was asked for; its frames come out a little smaller, so that their average
// would shrink the file with every save.
int averageOf(const FrameIndex& index) {
    const int stated = index.info() ? index.info()->statedKbps : 0;
    if (stated >= 8 && stated < 255) return stated * 1000;
    return static_cast<int>((index.averageBitRate() + 500) / 1000 * 1000);
}

// Sound of the file in which its encoder's quality is looked for.
struct Sample {
    std::vector<float> sound;
    std::int64_t mainBytes = 0;  ///< of its frames in the file
};

// Frames at either end of a sample that the encoder needs and nobody counts.
constexpr std::int64_t around = 8;
constexpr std::int64_t sampleFrames = 60;
constexpr std::int64_t placesSeen = 12;
constexpr std::size_t samplesTaken = 3;

// Where samples begin: of places spread evenly over the file, those with the largest frames, since
// quiet sound takes as little with any quality. None where the file is too short.
std::vector<std::int64_t> samplePlaces(const FrameIndex& index) {
    std::vector<std::int64_t> places;
    for (std::int64_t i = 1; i <= placesSeen; ++i) {
        const std::int64_t first = index.frameCount() * i / (placesSeen + 1);
        if (first + sampleFrames <= index.frameCount()) places.push_back(first);
    }
    std::ranges::stable_sort(places, std::greater(), [&index](std::int64_t first) {
        return index.frame(first + sampleFrames - 1).end() - index.frame(first).offset;
    });
    places.resize(std::min(places.size(), samplesTaken));
    return places;
}

std::vector<Sample> takeSamples(const std::filesystem::path& file, const FrameIndex& index) {
    SourceFrames frames(file, index);
    SourceSound sound(file, index);
    const auto samples = static_cast<std::int64_t>(index.header().samples());
    const auto channels = static_cast<std::size_t>(index.header().channels());
    const auto length = static_cast<std::size_t>((sampleFrames + 2 * around) * samples);
    std::vector<Sample> taken;
    for (const std::int64_t first : samplePlaces(index)) {
        Sample sample;
        sample.sound.resize(length * channels);
        sound.read((first - around) * samples, length, sample.sound.data());
        for (std::int64_t frame = first; frame < first + sampleFrames; ++frame)
            sample.mainBytes += frames.sideInfo(frame).mainBytes();
        taken.push_back(std::move(sample));
    }
    return taken;
}

// By how much more bytes the samples take with these settings than in their file; a logarithm.
double excess(const EncoderSettings& settings, const std::vector<Sample>& samples) {
    double encoded = 1;
    double stored = 1;
    for (const Sample& sample : samples) {
        const std::vector<LogicalFrame> frames = encodeWithLame(settings, sample.sound);
        for (std::int64_t i = around; i < around + sampleFrames; ++i)
            encoded += static_cast<double>(frames[static_cast<std::size_t>(i)].main.size());
        stored += static_cast<double>(sample.mainBytes);
    }
    return std::log(encoded / stored);
}

// The quality with which some of the file's sound takes as much room as it does there.
double probedQuality(const std::filesystem::path& file, const FrameIndex& index,
                     EncoderSettings settings) {
    constexpr int tries = 4;
    constexpr double closeEnough = 0.01;
    const std::vector<Sample> samples = takeSamples(file, index);
    // V0 to V9 are about a factor of four apart.
    double slope = -0.15;
    double lastExcess = 0;
    double lastQuality = 0;
    for (int i = 0; i < tries && !samples.empty(); ++i) {
        const double now = excess(settings, samples);
        if (i > 0 && settings.quality != lastQuality)
            slope = std::clamp((now - lastExcess) / (settings.quality - lastQuality), -0.5, -0.05);
        if (std::fabs(now) < closeEnough) break;
        lastExcess = now;
        lastQuality = settings.quality;
        settings.quality = std::clamp(settings.quality - now / slope, 0.0, worstQuality);
    }
    return settings.quality;
}

void setQuality(const std::filesystem::path& file, const FrameIndex& index,
                EncoderSettings& settings) {
    const auto& info = index.info();
    const bool lame = info && info->encoder.starts_with("LAME") && info->quality &&
                      info->vbrMethod >= 3 && info->vbrMethod <= 6;
    if (lame) {
        const double stated = (100 - static_cast<double>(std::min(*info->quality, 100U))) / 10;
        settings.quality = std::min(stated, worstQuality);
        return;
    }
    settings.quality = qualityFor(static_cast<double>(index.averageBitRate()), index.header());
    if (!whyNotSpliceable(file, index)) settings.quality = probedQuality(file, index, settings);
}

// Layer I has bit-rates that Layer II lacks.
int nearestLayerTwo(const FrameHeader& header) {
    int best = 0;
    for (int index = 1; index <= 14; ++index) {
        const int rate = FrameHeader::bitRateOf(header.version, 2, index);
        if (std::abs(rate - header.bitRate) < std::abs(best - header.bitRate)) best = rate;
    }
    return best;
}

}  // namespace

EncoderSettings settingsOf(const std::filesystem::path& file, const FrameIndex& index) {
    const FrameHeader& header = index.header();
    EncoderSettings settings;
    settings.layer = header.layer == 3 ? 3 : 2;
    settings.sampleRate = header.sampleRate;
    settings.mode = header.mode;
    settings.crc = settings.layer == 3 && header.crc;
    settings.rate = rateOf(index);
    settings.bitRate = header.layer == 1 ? nearestLayerTwo(header) : header.bitRate;
    if (settings.rate == EncoderSettings::Rate::Average || header.freeFormat()) {
        settings.bitRate = averageOf(index);
    }
    if (settings.rate == EncoderSettings::Rate::Quality) setQuality(file, index, settings);
    return settings;
}

}  // namespace audio::mpeg
