// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/SoundWindow.h"

#include <algorithm>

#include "audio/vorbis/ChannelOrder.h"

namespace audio::vorbis {

SoundWindow::SoundWindow(SoundReader reader, std::int64_t frames, int channels, bool silenceBefore)
    : reader_(std::move(reader)), frames_(frames), silenceBefore_(silenceBefore) {
    loaded_.channels.resize(static_cast<std::size_t>(channels));
}

void SoundWindow::load(std::int64_t from, std::int64_t to) {
    if (from < loaded_.from || from > loaded_.end()) {
        for (std::vector<float>& plane : loaded_.channels) plane.clear();
        loaded_.from = from;
    }
    for (std::vector<float>& plane : loaded_.channels)
        plane.erase(plane.begin(), plane.begin() + (from - loaded_.from));
    loaded_.from = from;
    const std::int64_t begin = loaded_.end();
    if (to <= begin) return;
    const auto count = static_cast<std::size_t>(to - begin);
    const std::size_t channels = loaded_.channels.size();
    interleaved_.resize(count * channels);
    reader_(begin, count, interleaved_.data());
    for (std::size_t channel = 0; channel < channels; ++channel) {
        std::vector<float>& plane = loaded_.channels[channel];
        const float* sample = interleaved_.data() + placeInWave(channel, channels);
        plane.reserve(plane.size() + count);
        for (std::size_t i = 0; i < count; ++i, sample += channels) plane.push_back(*sample);
    }
}

Planes SoundWindow::stretch(std::int64_t from, std::int64_t to) {
    const std::int64_t first = std::clamp<std::int64_t>(from, 0, frames_);
    const std::int64_t last = std::clamp<std::int64_t>(to, first, frames_);
    load(first, last);
    Planes planes{from, {}};
    for (const std::vector<float>& inside : loaded_.channels) {
        std::vector<float>& plane = planes.channels.emplace_back();
        plane.reserve(static_cast<std::size_t>(to - from));
        const auto mirrored = [&](std::int64_t frame) {
            const std::int64_t at = frame < 0 ? -1 - frame : 2 * frames_ - 1 - frame;
            const bool silent = (frame < 0 && silenceBefore_) || at < first || at >= last;
            return silent ? 0.0F : inside[static_cast<std::size_t>(at - first)];
        };
        for (std::int64_t frame = from; frame < first; ++frame) plane.push_back(mirrored(frame));
        plane.insert(plane.end(), inside.begin(), inside.begin() + (last - first));
        for (std::int64_t frame = last; frame < to; ++frame) plane.push_back(mirrored(frame));
    }
    return planes;
}

}  // namespace audio::vorbis
