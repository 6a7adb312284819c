// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "audio/mpeg/encode/EncoderSettings.h"
#include "audio/mpeg/read/LogicalFrame.h"
#include "audio/mpeg/splice/Layout.h"
#include "audio/mpeg/splice/OutputSound.h"
#include "audio/parallel/OrderedTasks.h"

namespace audio::mpeg {

/// A stretch of new frames that is encoded by itself.
struct ChunkPlan {
    std::int64_t encodeFrom = 0;  ///< the encoder's first frame, in frames of the new stream
    std::int64_t first = 0;       ///< from here on its frames count
    std::int64_t end = 0;         ///< up to here
    bool lastOfRegion = false;
};

/// An encoded chunk.
struct Chunk {
    ChunkPlan plan;
    std::shared_ptr<const std::vector<float>> sound;  ///< from the encoder's first sample on
    std::vector<LogicalFrame> frames;                 ///< of plan.first … plan.end

    const LogicalFrame& frame(std::int64_t number) const {
        return frames[static_cast<std::size_t>(number - plan.first)];
    }
};

/// Frames [first, end) of the new stream as chunks of about one length, an even number of them.
/// They depend on the region alone, so that the result depends on no number of threads. Each but
/// the last runs on into the next one's frames, for a place where both fit.
std::vector<ChunkPlan> planChunks(const EncoderSettings& settings, std::int64_t start,
                                  std::int64_t first, std::int64_t end);

/// Encodes chunks on several threads, and gives them in order. The sound is read on the calling
/// thread, a few chunks ahead.
class ChunkEncoder {
  public:
    /// `tick` is called every 20 ms while the caller waits. All references must outlive it.
    ChunkEncoder(const EncoderSettings& settings, std::vector<ChunkPlan> plans, OutputSound& sound,
                 int threads, const std::function<void()>& tick);

    /// The next chunk; throws what the encoder or the sound threw.
    Chunk next();

    /// Frames [first, first + count) of a chunk again, `steps` cheaper.
    std::vector<LogicalFrame> cheaper(const Chunk& chunk, std::int64_t first, std::int64_t count,
                                      int steps) const;

  private:
    void start(const ChunkPlan& plan);
    std::shared_ptr<const std::vector<float>> readSound(const ChunkPlan& plan);
    std::shared_ptr<std::vector<float>> spareSound();

    EncoderSettings settings_;
    Geometry geometry_;
    std::vector<ChunkPlan> plans_;
    OutputSound& sound_;
    const std::function<void()>& tick_;
    std::size_t started_ = 0;
    std::vector<std::shared_ptr<std::vector<float>>> sounds_;  // all there are, in use or not
    std::shared_ptr<const std::vector<float>> lastSound_;
    std::int64_t lastSoundFrom_ = 0;  // raw
    parallel::OrderedTasks<Chunk> running_;
};

}  // namespace audio::mpeg
