// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/VoiceChannel.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace player {
namespace {

constexpr int kRingBits = 18;              // six seconds at 44.1 kHz, more than one at 192 kHz
constexpr std::int64_t kGateFrames = 128;  // of the ramp at a pause, a resume and a seek: 3 ms
constexpr int kVolumeFrames = 1024;        // of the ramp between two volumes: 23 ms

std::int64_t nanoseconds(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}

}  // namespace

float gainOfLevel(double level) {
    const double share = std::clamp(level, 0.0, 99.0) / 99.0;
    return float(share * share * share);
}

float LevelFade::gainAfter(std::int64_t frames) const {
    const double share = frames >= length ? 1.0 : double(frames) / double(length);
    return gainOfLevel(from + (to - from) * share);
}

VoiceChannel::VoiceChannel() : ring_(kRingBits), tap_(kTap) {}

bool VoiceChannel::mayRun(int rate) const {
    return running_ && opened_ == announced_ && ringRate_ == rate;
}

void VoiceChannel::render(float* stereo, std::size_t frames,
                          const audio::output::Timing& timing) noexcept {
    std::size_t done = leaveOld(stereo, frames, timing.rate);
    const bool run = mayRun(timing.rate);
    const std::int64_t first = ring_.read();
    std::int64_t at = first;
    if (run && startHard_ && ring_.available() > 0) {
        gate_ = 1;
        startHard_ = false;
    }
    while (done < frames && (run || gate_ > 0)) {
        const bool ramps = run ? gate_ < 1 : true;
        const float left = run ? 1 - gate_ : gate_;
        const auto rampFrames = std::max<std::int64_t>(1, std::lround(left * kGateFrames));
        std::int64_t count = std::min<std::int64_t>(std::int64_t(frames - done), ring_.available());
        if (ramps) count = std::min(count, rampFrames);
        if (count <= 0) break;
        mix(stereo + 2 * done, at, std::size_t(count),
            ramps ? (run ? 1.0F : -1.0F) * left / float(rampFrames) : 0);
        if (ramps && count == rampFrames) gate_ = run ? 1 : 0;
        at += count;
        done += std::size_t(count);
        ring_.advanceTo(at);
    }
    if (!run && ring_.available() == 0) gate_ = 0;
    note(first, at, timing);
}

/// Goes on at the frame that the decoder thread asked for; what sounded until now ends in a ramp.
std::size_t VoiceChannel::leaveOld(float* stereo, std::size_t frames, int rate) {
    const bool sameDevice = std::exchange(lastRate_, rate) == rate;
    const unsigned published = published_;
    if (published == seen_) return 0;
    seen_ = published;
    const std::int64_t target = ring_.target();
    const std::int64_t from = ring_.read();
    if (target < from) return 0;  // it is on already: what is new followed the old without a break
    const std::int64_t left = std::min<std::int64_t>(
        {kGateFrames, std::int64_t(frames), ring_.available(), target - from});
    const bool sounds = gate_ > 0 && left > 0 && sameDevice;
    if (sounds) mix(stereo, from, std::size_t(left), -gate_ / float(left));
    ring_.advanceTo(target);
    gate_ = 0;
    startHard_ = hardStart_;
    return sounds ? std::size_t(left) : 0;
}

/// Adds available frames; the gate moves by a step with each, and the volume towards its goal.
void VoiceChannel::mix(float* stereo, std::int64_t first, std::size_t frames, float gateStep) {
    if (const float goal = volume_; goal != gainGoal_) {
        gainGoal_ = goal;
        gainStep_ = (goal - gain_) / kVolumeFrames;
    }
    if (fade_.take()) faded_ = 0;
    const bool fades = fade_.value().fade.has_value();
    for (std::size_t i = 0; i < frames; ++i) {
        const std::int64_t frame = first + std::int64_t(i);
        if (gain_ != gainGoal_) {
            gain_ += gainStep_;
            if ((gainStep_ >= 0) == (gain_ >= gainGoal_)) gain_ = gainGoal_;
        }
        gate_ += gateStep;
        float gain = gate_ * gain_;
        if (fades) gain *= fadeGain(frame);
        const float* sample = ring_.frame(frame);
        stereo[2 * i] += gain * sample[0];
        stereo[2 * i + 1] += gain * sample[1];
        tap_[std::size_t(frame) % kTap].store(gain * (sample[0] + sample[1]) / 2,
                                              std::memory_order_relaxed);
    }
}

float VoiceChannel::fadeGain(std::int64_t frame) {
    const LevelFade& fade = *fade_.value().fade;
    const float gain = fade.gainAfter(faded_);
    if (frame < fade.start) return gain;
    if (++faded_ > fade.length && fade.to <= 0) endedFade_ = fade_.value().number;
    return gain;
}

void VoiceChannel::note(std::int64_t first, std::int64_t end, const audio::output::Timing& timing) {
    const std::uint64_t number = recorded_.load(std::memory_order_relaxed);
    Record& record = records_[number % kRecords];
    record.heardFrom = nanoseconds(timing.heardFrom);
    record.first = first;
    record.end = end;
    record.rate = timing.rate;
    recorded_.store(number + 1, std::memory_order_release);
}

std::int64_t VoiceChannel::heard() const {
    const std::uint64_t count = recorded_.load(std::memory_order_acquire);
    const std::int64_t now = nanoseconds(Clock::now());
    // The newest block that has begun to be heard. The callback may write one or two meanwhile, but
    // not so many that it reaches the ones looked at here.
    std::int64_t earliest = 0;
    for (std::uint64_t back = 1; back <= kRecords / 2 && back <= count; ++back) {
        const Record& record = records_[(count - back) % kRecords];
        const std::int64_t elapsed = now - record.heardFrom;
        earliest = record.first;
        if (elapsed < 0) continue;
        const auto frames = std::int64_t(double(elapsed) / 1e9 * record.rate);
        return record.first + std::min(frames, record.end - record.first);
    }
    return earliest;
}

void VoiceChannel::copyHeard(std::span<float> mono) const {
    const std::int64_t first = heard() - std::int64_t(mono.size());
    for (std::size_t i = 0; i < mono.size(); ++i) {
        const std::int64_t frame = first + std::int64_t(i);
        mono[i] = frame < 0 ? 0 : tap_[std::size_t(frame) % kTap].load(std::memory_order_relaxed);
    }
}

void VoiceChannel::publish(std::int64_t frame, int rate, bool hardStart) {
    hardStart_ = hardStart;
    ringRate_ = rate;
    ring_.skipTo(frame);
    ++published_;
}

std::int64_t VoiceChannel::level() const {
    return ring_.written() - std::max(ring_.read(), ring_.target());
}

void VoiceChannel::putFade(const std::optional<LevelFade>& fade) {
    fade_.put({++lastFade_, fade});
}

}  // namespace player
