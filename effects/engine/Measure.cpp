// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/engine/Measure.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "audio/dsp/Gain.h"
#include "audio/dsp/Loudness.h"
#include "audio/dsp/Silence.h"
#include "audio/edit/EditReader.h"
#include "audio/edit/ReadAhead.h"

namespace effects {
namespace {

using audio::edit::EditList;
using audio::edit::FrameRange;
using audio::edit::Work;

template <typename Take>
void readAll(const EditList& list, FrameRange range, Work& work, Take take) {
    constexpr std::size_t blockFrames = 16384;
    const int channels = list.shape().channels;
    std::vector<float> block(blockFrames * static_cast<std::size_t>(channels));
    audio::edit::ReadAhead reader(std::make_unique<audio::edit::EditReader>(list.slice(range)),
                                  channels);
    work.begin(range.end - range.start);
    while (const std::size_t got = reader.read(block.data(), blockFrames)) {
        take(std::span<const float>(block.data(), got * static_cast<std::size_t>(channels)));
        work.advance(static_cast<std::int64_t>(got));
    }
}

}  // namespace

std::vector<float> measurePeaks(const EditList& list, FrameRange range, bool linked, Work& work) {
    std::vector<float> peaks(linked ? 1 : static_cast<std::size_t>(list.shape().channels));
    readAll(list, range, work, [&](std::span<const float> samples) {
        if (linked)
            peaks[0] = std::max(peaks[0], audio::dsp::peak(samples));
        else
            audio::dsp::raisePeaks(samples, peaks);
    });
    return peaks;
}

FrameRange measureAudible(const EditList& list, FrameRange range, const SilenceSettings& settings,
                          Work& work) {
    const auto& shape = list.shape();
    audio::dsp::LoudnessMeter meter(shape.sampleRate, shape.channels, settings.windowMs);
    readAll(list, range, work, [&meter](std::span<const float> samples) { meter.add(samples); });
    meter.finish();
    const FrameRange kept = audio::dsp::audibleRange(meter, settings.threshold);
    return {range.start + kept.start, range.start + kept.end};
}

}  // namespace effects
