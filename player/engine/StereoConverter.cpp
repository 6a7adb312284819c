// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/StereoConverter.h"

namespace player {

StereoConverter::StereoConverter(int inRate, int inChannels, int outRate)
    : inRate_(inRate), inChannels_(inChannels), outRate_(outRate) {
    const int channels = inChannels == 1 ? 2 : inChannels;  // mono is doubled here, at its level
    if (inRate != outRate || channels != 2)
        resampler_ = std::make_unique<audio::ffmpeg::Resampler>(inRate, channels, outRate, 2);
}

void StereoConverter::push(const float* interleaved, std::size_t frames, std::vector<float>& out) {
    taken_ += std::int64_t(frames);
    if (inChannels_ == 1) {
        stereo_.resize(2 * frames);
        for (std::size_t i = 0; i < frames; ++i)
            stereo_[2 * i] = stereo_[2 * i + 1] = interleaved[i];
        interleaved = stereo_.data();
    }
    if (resampler_)
        resampler_->push(interleaved, frames, out);
    else
        out.insert(out.end(), interleaved, interleaved + 2 * frames);
}

void StereoConverter::finish(std::vector<float>& out) {
    if (resampler_) resampler_->finish(out);
    taken_ = 0;
}

std::int64_t StereoConverter::place() const {
    return (taken_ * outRate_ + inRate_ - 1) / inRate_;
}

}  // namespace player
