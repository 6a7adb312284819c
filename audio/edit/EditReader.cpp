// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/EditReader.h"

#include <algorithm>

#include "platform/Error.h"

namespace audio::edit {

std::size_t EditReader::read(float* interleaved, std::size_t frames) {
    const auto& segments = list_.segments();
    if (segment_ >= segments.size() || frames == 0) return 0;
    const Segment& segment = segments[segment_];
    const std::size_t count =
        std::min(frames, static_cast<std::size_t>(segment.frames - intoSegment_));
    readSegment(segment, interleaved, count);
    intoSegment_ += static_cast<std::int64_t>(count);
    if (intoSegment_ == segment.frames) {
        ++segment_;
        intoSegment_ = 0;
    }
    return count;
}

void EditReader::seek(std::int64_t frame) {
    const auto& segments = list_.segments();
    segment_ = 0;
    while (segment_ < segments.size() && frame >= segments[segment_].frames)
        frame -= segments[segment_++].frames;
    intoSegment_ = segment_ < segments.size() ? frame : 0;
}

void EditReader::readSegment(const Segment& segment, float* interleaved, std::size_t frames) {
    const int channels = list_.shape().channels;
    const std::size_t samples = frames * static_cast<std::size_t>(channels);
    if (segment.silent()) {
        std::fill_n(interleaved, samples, 0.0F);
        return;
    }
    Opened& opened = opened_[segment.material.get()];
    if (!opened.reader) opened.reader = segment.material->open();
    const std::int64_t wanted = segment.start + intoSegment_;
    if (opened.position != wanted) opened.reader->seek(wanted);
    if (readFully(*opened.reader, interleaved, frames, channels) < frames)
        throw platform::Error("The sound ends before its stated length.");
    opened.position = wanted + static_cast<std::int64_t>(frames);
    for (const GainSlice& gain : segment.gains) {
        const std::int64_t offset = gain.offset + intoSegment_;
        if (gain.channel == allChannels)
            dsp::applyRamp({interleaved, samples}, channels, gain.ramp, offset);
        else
            dsp::applyRampToChannel({interleaved, samples}, channels, gain.channel, gain.ramp,
                                    offset);
    }
}

}  // namespace audio::edit
