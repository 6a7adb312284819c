// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Loudness.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <ebur128.h>

#include "platform/Error.h"

namespace audio::dsp {

struct LoudnessMeter::State {
    ebur128_state* handle = nullptr;
    ~State() {
        if (handle != nullptr) ebur128_destroy(&handle);
    }
};

LoudnessMeter::LoudnessMeter(int sampleRate, int channels, double windowMs)
    : state_(std::make_unique<State>()),
      channels_(channels),
      windowMs_(windowMs),
      window_(static_cast<std::int64_t>(sampleRate * windowMs / 1000.0)),
      step_(std::max<std::int64_t>(1, window_ / 10)) {
    if (!(windowMs > 0) || windowMs > 60000 || window_ < 1)
        throw platform::Error("The loudness window must be 1 to 60000 ms long.");
    state_->handle = ebur128_init(static_cast<unsigned>(channels),
                                  static_cast<unsigned long>(sampleRate), EBUR128_MODE_I);
    const auto windowLength = static_cast<unsigned long>(std::max(400.0, std::ceil(windowMs)));
    if (state_->handle == nullptr ||
        ebur128_set_max_window(state_->handle, windowLength) == EBUR128_ERROR_NOMEM)
        throw platform::Error("The loudness of sound with " + std::to_string(channels) +
                              " channels at " + std::to_string(sampleRate) +
                              " Hz cannot be measured.");
    // A single channel is heard from two loudspeakers; libebur128 would count it once.
    if (channels == 1) ebur128_set_channel(state_->handle, 0, EBUR128_DUAL_MONO);
}

LoudnessMeter::~LoudnessMeter() = default;

void LoudnessMeter::add(std::span<const float> interleaved) {
    const std::size_t frameSize = static_cast<std::size_t>(channels_);
    while (!interleaved.empty()) {
        const std::size_t count =
            std::min(interleaved.size() / frameSize, static_cast<std::size_t>(step_ - intoStep_));
        if (count == 0) return;
        if (ebur128_add_frames_float(state_->handle, interleaved.data(), count) != EBUR128_SUCCESS)
            throw platform::Error("There is not enough memory to measure the loudness.");
        interleaved = interleaved.subspan(count * frameSize);
        frames_ += static_cast<std::int64_t>(count);
        intoStep_ += static_cast<std::int64_t>(count);
        if (intoStep_ < step_) continue;
        intoStep_ = 0;
        if (frames_ >= window_) measureWindow();
    }
}

void LoudnessMeter::finish() {
    if (frames_ >= window_ && intoStep_ > 0) measureWindow();
}

std::int64_t LoudnessMeter::windowEnd(std::size_t index) const {
    // The first window ends with the first step that completes it.
    const std::int64_t first = (window_ + step_ - 1) / step_ * step_;
    return std::min(frames_, first + static_cast<std::int64_t>(index) * step_);
}

double LoudnessMeter::gatedLoudness() const {
    double loudness = 0;
    if (ebur128_loudness_global(state_->handle, &loudness) != EBUR128_SUCCESS)
        return -std::numeric_limits<double>::infinity();
    return loudness;
}

void LoudnessMeter::measureWindow() {
    double loudness = -std::numeric_limits<double>::infinity();
    ebur128_loudness_window(state_->handle, static_cast<unsigned long>(windowMs_), &loudness);
    windows_.push_back(static_cast<float>(loudness));
}

}  // namespace audio::dsp
