// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "audio/output/OutputDevice.h"
#include "audio/pcm/FrameRing.h"
#include "player/engine/Handover.h"

namespace player {

/// The gain of a level from 0 to 99: its share cubed, near to how loudness is felt. 99 is
/// exactly 1.
float gainOfLevel(double level);

/// A change of level over a number of frames. A plain value.
struct LevelFade {
    std::int64_t start = 0;   ///< frame of the ring from which on mixed frames are counted
    std::int64_t length = 0;  ///< mixed frames
    double from = 99;         ///< levels
    double to = 99;
    float gainAfter(std::int64_t frames) const;
};

/// The last stretch of a player's sound: from the ring that its decoder thread fills into the mix.
/// Only gains are ever ramped: a pause, a seek or a change of volume alters no frame's place, and
/// at the full level, between the ramps, every sample comes through as it is.
class VoiceChannel {
  public:
    VoiceChannel();

    // The sound callback.

    /// Adds this voice to a block.
    void render(float* stereo, std::size_t frames, const audio::output::Timing& timing) noexcept;

    // The thread that owns the engine.

    void setRunning(bool running) { running_ = running; }
    void setVolume(float gain) { volume_ = gain; }
    bool running() const { return running_; }
    /// Silence, until the opening of this number is done.
    void announceOpening(unsigned number) { announced_ = number; }
    /// Whether a fade to silence has come to its end.
    bool fadedOut() const { return endedFade_ != 0 && endedFade_ == lastFade_; }
    /// The frame of the ring that is heard now, counted in what the device has played.
    std::int64_t heard() const;
    /// The last frames heard, of both channels together, as they went into the mix.
    void copyHeard(std::span<float> mono) const;

    // The decoder thread.

    audio::pcm::FrameRing& ring() { return ring_; }
    /// Makes the ring's frames from this one on the next that are mixed; `rate` is theirs. A hard
    /// start begins with its first sample, any other with a short ramp.
    void publish(std::int64_t frame, int rate, bool hardStart);
    void openingDone(unsigned number) { opened_ = number; }
    /// Frames that are there and not mixed yet.
    std::int64_t level() const;
    /// In place of the fade before.
    void setFade(const LevelFade& fade) { putFade(fade); }
    void clearFade() { putFade(std::nullopt); }

  private:
    using Clock = std::chrono::steady_clock;

    /// What the callback last did, for whoever asks what is heard now.
    struct Record {
        std::atomic<std::int64_t> heardFrom = 0;  // ns of the clock; when its first frame is heard
        std::atomic<std::int64_t> first = 0;      // frames of the ring
        std::atomic<std::int64_t> end = 0;
        std::atomic<int> rate = 0;
    };
    struct NumberedFade {
        unsigned number = 0;
        std::optional<LevelFade> fade;  // none: the volume alone
    };
    static constexpr std::size_t kRecords = 16;
    static constexpr std::size_t kTap = 131072;  // more than the longest buffers hold

    void putFade(const std::optional<LevelFade>& fade);
    bool mayRun(int rate) const;
    std::size_t leaveOld(float* stereo, std::size_t frames, int rate);
    float fadeGain(std::int64_t frame);
    void mix(float* stereo, std::int64_t first, std::size_t frames, float gateStep);
    void note(std::int64_t first, std::int64_t end, const audio::output::Timing& timing);

    audio::pcm::FrameRing ring_;
    std::atomic<bool> running_ = false;    // owner writes
    std::atomic<float> volume_ = 1.0F;     // owner writes
    std::atomic<unsigned> announced_ = 0;  // owner writes
    std::atomic<unsigned> opened_ = 0;     // decoder writes
    std::atomic<int> ringRate_ = 0;        // decoder writes
    std::atomic<bool> hardStart_ = true;   // decoder writes
    std::atomic<unsigned> published_ = 0;  // decoder writes, after all that it publishes
    Handover<NumberedFade> fade_;          // decoder writes, callback reads
    std::atomic<unsigned> lastFade_ = 0;   // decoder writes: the number of what it put last
    std::atomic<unsigned> endedFade_ = 0;  // callback writes: the last that reached silence

    // The callback only.
    std::int64_t faded_ = 0;  // frames of fade_
    float gate_ = 0;          // 0 silent … 1 open
    bool startHard_ = false;
    unsigned seen_ = 0;  // of published_
    int lastRate_ = 0;
    float gain_ = 1.0F;  // follows volume_
    float gainGoal_ = 1.0F;
    float gainStep_ = 0;

    // The callback writes, anyone reads.
    std::array<Record, kRecords> records_;
    std::atomic<std::uint64_t> recorded_ = 0;
    std::vector<std::atomic<float>> tap_;  // by frame of the ring, kTap of them
};

}  // namespace player
