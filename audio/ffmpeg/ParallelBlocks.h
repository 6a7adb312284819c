// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <vector>

#include "audio/ffmpeg/BlockEncoder.h"
#include "audio/parallel/OrderedTasks.h"

namespace audio::ffmpeg {

/// Encodes on several threads, for a recipe with independent blocks: chunks of a fixed length, each
/// by an encoder of its own that is shown the block before. The packets are those that a single
/// encoder would make, and are given in order on the calling thread. Memory: one chunk of about
/// 200,000 frames for each thread, two that keep the threads busy and one being gathered. One
/// thread at a time; throws what an encoder threw, when the turn of its packets comes.
class ParallelBlocks {
  public:
    /// `threads`: how many shall be busy; 0: one for each core.
    ParallelBlocks(const std::filesystem::path& file, const Format& format, const Recipe& recipe,
                   int threads, TakePacket take);

    /// The next whole block.
    void add(const float* interleaved, std::size_t frames);
    /// Returns when all packets have been given.
    void finish();

  private:
    struct Chunk {
        std::vector<float> sound;  ///< beginning with the block before, where there is one
        std::int64_t stamp = 0;    ///< of its first frame
        bool knowsBefore = false;
    };
    using Packets = std::vector<PacketPtr>;
    void start();
    void giveFirst();
    static Packets encode(BlockEncoder& encoder, const Chunk& chunk);

    std::filesystem::path file_;
    Format format_;
    Recipe recipe_;
    TakePacket take_;
    Chunk gathered_;
    std::size_t blockSamples_ = 0;
    parallel::OrderedTasks<Packets> running_;
};

}  // namespace audio::ffmpeg
