// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Peaks.h"

#include <algorithm>

namespace audio::dsp {

PeakMeter::PeakMeter(std::int64_t frames, int channels, std::size_t columns)
    : frames_(std::max<std::int64_t>(frames, 0)), channels_(std::size_t(std::max(channels, 1))) {
    peaks_.columns.resize(std::size_t(std::min<std::int64_t>(frames_, std::int64_t(columns))));
}

std::size_t PeakMeter::columnOf(std::int64_t frame) const {
    return std::size_t(frame * std::int64_t(peaks_.columns.size()) / frames_);
}

void PeakMeter::add(const float* interleaved, std::size_t frames) {
    const std::int64_t end = std::min(frames_, done_ + std::int64_t(frames));
    while (done_ < end) {
        Peaks::Column& column = peaks_.columns[columnOf(done_)];
        const auto [low, high] = std::minmax_element(interleaved, interleaved + channels_);
        column.low = std::min(column.low, *low);
        column.high = std::max(column.high, *high);
        interleaved += channels_;
        ++done_;
    }
}

const Peaks& PeakMeter::peaks() {
    peaks_.measured = frames_ == 0 ? 1.0 : double(done_) / double(frames_);
    return peaks_;
}

}  // namespace audio::dsp
