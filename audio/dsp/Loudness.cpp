// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/dsp/Loudness.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Error.h"

namespace audio::dsp {
namespace {

constexpr double gatingBlockMs = 400;
// The filters' memory is gone after it: the high-pass at 38 Hz is the slowest.
constexpr double settlingMs = 400;
constexpr float silent = -std::numeric_limits<float>::infinity();

}  // namespace

void LoudnessState::Destroy::operator()(ebur128_state* state) const {
    ebur128_destroy(&state);
}

LoudnessState::LoudnessState(const LoudnessShape& shape, double windowMs)
    : channels_(static_cast<std::size_t>(shape.channels)),
      state_(ebur128_init(static_cast<unsigned>(shape.channels),
                          static_cast<unsigned long>(shape.sampleRate), EBUR128_MODE_I)) {
    const auto longest = static_cast<unsigned long>(std::max(gatingBlockMs, std::ceil(windowMs)));
    if (!state_ || ebur128_set_max_window(get(), longest) == EBUR128_ERROR_NOMEM)
        throw platform::Error("The loudness of sound with " + std::to_string(shape.channels) +
                              " channels at " + std::to_string(shape.sampleRate) +
                              " Hz cannot be measured.");
    // A single channel is heard from two loudspeakers; libebur128 would count it once.
    if (shape.channels == 1) ebur128_set_channel(get(), 0, EBUR128_DUAL_MONO);
}

void LoudnessState::add(std::span<const float> interleaved) {
    if (ebur128_add_frames_float(get(), interleaved.data(), interleaved.size() / channels_) !=
        EBUR128_SUCCESS)
        throw platform::Error("There is not enough memory to measure the loudness.");
}

double GatingMeter::gatedLoudness(const std::vector<GatingMeter>& stretches) {
    std::vector<ebur128_state*> states;
    for (const GatingMeter& stretch : stretches) states.push_back(stretch.state_.get());
    double loudness = silent;
    if (ebur128_loudness_global_multiple(states.data(), states.size(), &loudness) !=
        EBUR128_SUCCESS)
        return silent;
    return loudness;
}

WindowMeter::WindowMeter(const LoudnessShape& shape, const WindowGrid& grid, std::size_t first)
    : state_(shape, grid.windowMs()),
      channels_(static_cast<std::size_t>(shape.channels)),
      grid_(grid),
      next_(first),
      start_(std::max<std::int64_t>(
          0, grid.end(first) - grid.window() - framesOf(shape.sampleRate, settlingMs))),
      at_(start_) {}

void WindowMeter::add(std::span<const float> interleaved) {
    while (!interleaved.empty() && next_ < grid_.count()) {
        const auto wanted = static_cast<std::size_t>(grid_.end(next_) - at_);
        const std::size_t frames = std::min(interleaved.size() / channels_, wanted);
        state_.add(interleaved.first(frames * channels_));
        interleaved = interleaved.subspan(frames * channels_);
        at_ += static_cast<std::int64_t>(frames);
        if (frames == wanted) measure();
    }
}

void WindowMeter::measure() {
    double loudness = silent;
    ebur128_loudness_window(state_.get(), static_cast<unsigned long>(grid_.windowMs()), &loudness);
    windows_.push_back(static_cast<float>(loudness));
    ++next_;
}

}  // namespace audio::dsp
