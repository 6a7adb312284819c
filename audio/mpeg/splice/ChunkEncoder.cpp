// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/ChunkEncoder.h"

#include <algorithm>
#include <chrono>

#include "audio/mpeg/encode/LameEncoder.h"
#include "audio/mpeg/encode/LayerTwoEncoder.h"
#include "audio/parallel/Budget.h"

namespace audio::mpeg {
namespace {

// After so many frames the padding of every bit-rate at 44.1 kHz and its halves begins anew, so
// that a chunk that starts there carries it on.
constexpr std::int64_t paddingPeriod = 49;
// A chunk costs the frames that it shares with its neighbours, so long ones are cheap; but each
// that is in work takes memory.
constexpr std::int64_t longestChunk = 30 * paddingPeriod;
// A region that is shorter is not worth sharing between cores.
constexpr std::int64_t shortestShared = 300;
// How far a chunk's frames run on into the next one's, for a place where both fit. On music two of
// three chunks fit at the first frame, and nearly all the others best within seven.
constexpr std::int64_t overlapFrames = 16;
// Frames after which an encoder has forgotten that it started here; the reservoir takes longest.
std::int64_t preRollOf(const EncoderSettings& settings) {
    if (settings.layer != 3) return 2;
    return settings.rate == EncoderSettings::Rate::Quality ? 8 : 24;
}
// The encoder looks so far ahead.
constexpr std::int64_t postRoll = 6;
std::vector<LogicalFrame> encodeSound(const EncoderSettings& settings,
                                      std::span<const float> sound) {
    return settings.layer == 3 ? encodeWithLame(settings, sound) : encodeLayerTwo(settings, sound);
}

// Encodes and keeps frames [skip, skip + count).
std::vector<LogicalFrame> encodePart(const EncoderSettings& settings, std::span<const float> sound,
                                     std::size_t skip, std::size_t count) {
    std::vector<LogicalFrame> frames = encodeSound(settings, sound);
    if (frames.size() < skip + count) {
        throw platform::Error("The MPEG audio encoder gave too few frames.");
    }
    frames.erase(frames.begin() + static_cast<long>(skip + count), frames.end());
    frames.erase(frames.begin(), frames.begin() + static_cast<long>(skip));
    return frames;
}

// The frame an encoder has to begin with so that frames from `first` on come out right.
std::int64_t encoderStart(const Geometry& geometry, std::int64_t start, std::int64_t first,
                          std::int64_t preRoll) {
    if (first - preRoll >= 0) return first - preRoll;
    // Nothing is heard before `start`, so where that lies behind the delay, nothing is lost.
    if (start >= geometry.codecDelay) return 0;
    // Silence goes in before the stream begins.
    return -((geometry.codecDelay + geometry.frame - 1) / geometry.frame);
}

// An even number of chunks of one length, so that the last does not leave cores idle. It never
// follows the number of threads: the bytes must not depend on it.
std::int64_t chunkLength(std::int64_t region) {
    if (region < shortestShared) return region;
    const std::int64_t pairs = (region + 2 * longestChunk - 1) / (2 * longestChunk);
    const std::int64_t length = region / (2 * pairs);
    return (length + paddingPeriod / 2) / paddingPeriod * paddingPeriod;
}

}  // namespace

std::vector<ChunkPlan> planChunks(const EncoderSettings& settings, std::int64_t start,
                                  std::int64_t first, std::int64_t end) {
    const Geometry geometry = Geometry::of(settings.layer, settings.samplesPerFrame());
    std::vector<ChunkPlan> plans;
    const std::int64_t usual = chunkLength(end - first);
    std::int64_t from = first;
    while (from < end) {
        // A short rest goes with the chunk before.
        const bool last = end - (from + usual) < (usual + 1) / 2;
        const std::int64_t to = last ? end : from + usual;
        ChunkPlan plan;
        plan.first = from;
        plan.end = last ? end : to + overlapFrames;
        plan.encodeFrom = encoderStart(geometry, start, from, preRollOf(settings));
        plan.lastOfRegion = last;
        plans.push_back(plan);
        from = to;
    }
    return plans;
}

ChunkEncoder::ChunkEncoder(const EncoderSettings& settings, std::vector<ChunkPlan> plans,
                           OutputSound& sound, int threads, const std::function<void()>& tick)
    : settings_(settings),
      geometry_(Geometry::of(settings.layer, settings.samplesPerFrame())),
      plans_(std::move(plans)),
      sound_(sound),
      tick_(tick),
      running_(parallel::threadCount(threads), 1) {}

Chunk ChunkEncoder::next() {
    while (started_ < plans_.size() && !running_.full()) start(plans_[started_++]);
    while (!running_.ready(std::chrono::milliseconds(20))) tick_();
    return running_.take();
}

void ChunkEncoder::start(const ChunkPlan& plan) {
    running_.begin([this, plan, sound = readSound(plan)] {
        return Chunk{
            plan, sound,
            encodePart(settings_, *sound, static_cast<std::size_t>(plan.first - plan.encodeFrom),
                       static_cast<std::size_t>(plan.end - plan.first))};
    });
}

std::shared_ptr<const std::vector<float>> ChunkEncoder::readSound(const ChunkPlan& plan) {
    const auto channels = static_cast<std::size_t>(settings_.channels());
    const std::int64_t from = plan.encodeFrom * geometry_.frame + geometry_.codecDelay;
    const std::int64_t end = (plan.end + postRoll) * geometry_.frame + geometry_.codecDelay;
    auto sound = spareSound();
    sound->resize(static_cast<std::size_t>(end - from) * channels);
    // What the chunk before had already asked for is taken from there.
    std::size_t known = 0;
    if (lastSound_ && from >= lastSoundFrom_) {
        const std::size_t skip = static_cast<std::size_t>(from - lastSoundFrom_) * channels;
        if (skip < lastSound_->size()) {
            known = std::min(lastSound_->size() - skip, sound->size());
            std::copy_n(lastSound_->begin() + static_cast<long>(skip), known, sound->begin());
        }
    }
    sound_.read(from + static_cast<std::int64_t>(known / channels),
                (sound->size() - known) / channels, sound->data() + known);
    lastSound_ = sound;
    lastSoundFrom_ = from;
    return sound;
}

// Memory of chunks that are done serves again: new pages are slow.
std::shared_ptr<std::vector<float>> ChunkEncoder::spareSound() {
    for (const auto& sound : sounds_)
        if (sound.use_count() == 1) return sound;
    sounds_.push_back(std::make_shared<std::vector<float>>());
    return sounds_.back();
}

std::vector<LogicalFrame> ChunkEncoder::cheaper(const Chunk& chunk, std::int64_t first,
                                                std::int64_t count, int steps) const {
    const std::int64_t from = std::max(chunk.plan.encodeFrom, first - preRollOf(settings_));
    const auto perFrame =
        static_cast<std::size_t>(geometry_.frame) * static_cast<std::size_t>(settings_.channels());
    const auto skip = static_cast<std::size_t>(from - chunk.plan.encodeFrom) * perFrame;
    const auto length = static_cast<std::size_t>(first + count + postRoll - from) * perFrame;
    return encodePart(settings_.cheaper(steps), std::span(*chunk.sound).subspan(skip, length),
                      static_cast<std::size_t>(first - from), static_cast<std::size_t>(count));
}

}  // namespace audio::mpeg
