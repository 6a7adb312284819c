// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/Resampled.h"

#include <algorithm>

#include "audio/pcm/Blocks.h"

namespace audio::edit {
namespace {

constexpr std::size_t mostBlockFrames = 8192;

}  // namespace

ResampledReader::ResampledReader(std::unique_ptr<FrameReader> inner, Shape from, Shape to)
    : inner_(std::move(inner)),
      from_(from),
      to_(to),
      input_(pcm::blockFrames(mostBlockFrames, from.channels) *
             static_cast<std::size_t>(from.channels)) {
    begin();
}

std::int64_t ResampledReader::length(std::int64_t frames, Shape from, Shape to) {
    return (frames * to.sampleRate + from.sampleRate - 1) / from.sampleRate;
}

std::size_t ResampledReader::read(float* interleaved, std::size_t frames) {
    while (used_ == ready_.size())
        if (!fill()) return 0;
    const std::size_t channels = static_cast<std::size_t>(to_.channels);
    const std::size_t count = std::min(frames * channels, ready_.size() - used_);
    std::copy_n(ready_.data() + used_, count, interleaved);
    used_ += count;
    position_ += static_cast<std::int64_t>(count / channels);
    return count / channels;
}

void ResampledReader::seek(std::int64_t frame) {
    if (frame < position_) {
        inner_->seek(0);
        begin();
    }
    const std::size_t blockFrames = pcm::blockFrames(mostBlockFrames, to_.channels);
    std::vector<float> dropped(blockFrames * static_cast<std::size_t>(to_.channels));
    while (position_ < frame)
        if (read(dropped.data(), static_cast<std::size_t>(
                                     std::min<std::int64_t>(blockFrames, frame - position_))) == 0)
            return;
}

void ResampledReader::begin() {
    resampler_ = std::make_unique<ffmpeg::Resampler>(from_.sampleRate, from_.channels,
                                                     to_.sampleRate, to_.channels);
    ready_.clear();
    used_ = 0;
    position_ = 0;
    ended_ = false;
}

bool ResampledReader::fill() {
    if (ended_) return false;
    ready_.clear();
    used_ = 0;
    const std::size_t got =
        inner_->read(input_.data(), input_.size() / static_cast<std::size_t>(from_.channels));
    if (got > 0) {
        resampler_->push(input_.data(), got, ready_);
    } else {
        resampler_->finish(ready_);
        ended_ = true;
    }
    return true;
}

}  // namespace audio::edit
