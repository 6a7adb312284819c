// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/engine/Measure.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio/dsp/Gain.h"
#include "audio/dsp/Loudness.h"
#include "audio/dsp/Silence.h"
#include "audio/edit/EditReader.h"
#include "audio/edit/ParallelScan.h"

namespace effects {
namespace {

using audio::FrameRange;
using audio::dsp::GatingMeter;
using audio::dsp::LoudnessShape;
using audio::dsp::WindowGrid;
using audio::dsp::WindowMeter;
using audio::edit::EditList;
using audio::edit::Work;

// Each piece but the first begins as much earlier as its first gating block needs.
double measureLoudness(const EditList& list, FrameRange range, Work& work) {
    const auto [rate, channels] = list.shape();
    auto pieces = audio::edit::piecesOf(list, range, GatingMeter::stepFrames(rate));
    std::vector<GatingMeter> meters;
    for (FrameRange& piece : pieces) {
        piece.start = std::max(range.start, piece.start - GatingMeter::leadFrames(rate));
        meters.emplace_back(LoudnessShape{rate, channels});
    }
    audio::edit::scan(list, pieces, work,
                      [&meters](std::size_t number, std::span<const float> samples) {
                          meters[number].add(samples);
                      });
    return GatingMeter::gatedLoudness(meters);
}

constexpr std::int64_t edgeMs = 5;

float peakOf(const EditList& list, FrameRange range) {
    std::vector<float> few(static_cast<std::size_t>((range.end - range.start)) *
                           static_cast<std::size_t>(list.shape().channels));
    audio::edit::EditReader reader(list);
    reader.seek(range.start);
    audio::edit::readFully(reader, few.data(), static_cast<std::size_t>(range.end - range.start),
                           list.shape().channels);
    return audio::dsp::peak(few);
}

std::vector<float> measureWindows(const EditList& list, const WindowGrid& grid, std::size_t first,
                                  std::size_t count, Work& work) {
    const auto [rate, channels] = list.shape();
    WindowMeter meter({rate, channels}, grid, first);
    audio::edit::scan(list, {{meter.start(), grid.end(first + count - 1)}}, work,
                      [&meter](std::size_t, std::span<const float> some) { meter.add(some); });
    return meter.windows();
}

}  // namespace

std::vector<float> measurePeaks(const EditList& list, FrameRange range, bool linked, Work& work) {
    const std::size_t channels = linked ? 1 : static_cast<std::size_t>(list.shape().channels);
    const auto pieces = audio::edit::piecesOf(list, range, 1);
    std::vector<std::vector<float>> peaks(pieces.size(), std::vector<float>(channels));
    work.begin(range.end - range.start);
    audio::edit::scan(list, pieces, work, [&](std::size_t number, std::span<const float> samples) {
        if (linked)
            peaks[number][0] = std::max(peaks[number][0], audio::dsp::peak(samples));
        else
            audio::dsp::raisePeaks(samples, peaks[number]);
    });
    std::vector<float> highest(channels);
    for (const auto& some : peaks)
        for (std::size_t i = 0; i < channels; ++i) highest[i] = std::max(highest[i], some[i]);
    return highest;
}

bool countsAsSilence(float peak) {
    constexpr float sixtyBelow = 0.001F;
    return peak < sixtyBelow;
}

std::string notNormalized(float peak) {
    if (peak == 0.0F) return "It was not normalized: all of it is silence.";
    const long decibels = std::lround(20 * std::log10(static_cast<double>(peak)));
    return "It was not normalized: its peak of " + std::to_string(decibels) +
           " dBFS lies below -60 dBFS, which counts as silence.";
}

AudibleRange measureAudible(const EditList& list, FrameRange range, const SilenceSettings& settings,
                            Work& work) {
    const EditList sound = list.slice(range);
    const WindowGrid grid(list.shape().sampleRate, settings.windowMs, sound.frames());
    work.begin(sound.frames());
    const double loudness = measureLoudness(sound, {0, sound.frames()}, work);
    FrameRange kept = audio::dsp::audibleRange(
        grid, loudness, settings.threshold, [&](std::size_t first, std::size_t count) {
            return measureWindows(sound, grid, first, count, work);
        });
    kept.start = kept.start / settings.grid * settings.grid;
    kept.end =
        std::min(sound.frames(), (kept.end + settings.grid - 1) / settings.grid * settings.grid);
    AudibleRange audible{{range.start + kept.start, range.start + kept.end}};
    const std::int64_t edge = list.shape().sampleRate * edgeMs / 1000;
    audible.fadeFrames = std::min(edge, (kept.end - kept.start) / 2);
    const auto silence = static_cast<float>(std::ldexp(1.0, 1 - settings.bits));
    const auto heard = [&](std::int64_t from) {
        return peakOf(sound, {from, from + audible.fadeFrames}) >= silence;
    };
    audible.soundAtStart = kept.start > 0 && heard(kept.start);
    audible.soundAtEnd = kept.end < sound.frames() && heard(kept.end - audible.fadeFrames);
    return audible;
}

}  // namespace effects
