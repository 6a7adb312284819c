// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/ffmpeg/ParallelBlocks.h"

#include "audio/parallel/Budget.h"

namespace audio::ffmpeg {
namespace {

constexpr std::size_t chunkBlocks = 96;  // the block before, encoded twice, costs one in a hundred
constexpr int waiting = 2;  // chunks beyond those in work, so that no thread waits for sound

}  // namespace

ParallelBlocks::ParallelBlocks(const std::filesystem::path& file, const Format& format,
                               const Recipe& recipe, int threads, TakePacket take)
    : file_(file),
      format_(format),
      recipe_(recipe),
      take_(std::move(take)),
      running_(parallel::threadCount(threads), waiting) {}

void ParallelBlocks::add(const float* interleaved, std::size_t frames) {
    blockSamples_ = frames * static_cast<std::size_t>(format_.channels);
    gathered_.sound.insert(gathered_.sound.end(), interleaved, interleaved + blockSamples_);
    const std::size_t before = gathered_.knowsBefore ? 1 : 0;
    if (gathered_.sound.size() >= (chunkBlocks + before) * blockSamples_) start();
}

void ParallelBlocks::finish() {
    if (!gathered_.sound.empty()) start();
    while (!running_.empty()) giveFirst();
}

void ParallelBlocks::start() {
    while (running_.full()) giveFirst();
    const auto channels = static_cast<std::size_t>(format_.channels);
    const std::size_t kept = gathered_.sound.size() - blockSamples_;
    Chunk next;
    next.sound.assign(gathered_.sound.end() - static_cast<std::ptrdiff_t>(blockSamples_),
                      gathered_.sound.end());
    next.stamp = gathered_.stamp + static_cast<std::int64_t>(kept / channels);
    next.knowsBefore = true;
    running_.begin([this, chunk = std::move(gathered_)] {
        BlockEncoder encoder(file_, format_, recipe_);
        return encode(encoder, chunk);
    });
    gathered_ = std::move(next);
}

void ParallelBlocks::giveFirst() {
    for (const PacketPtr& packet : running_.take()) take_(*packet);
}

ParallelBlocks::Packets ParallelBlocks::encode(BlockEncoder& encoder, const Chunk& chunk) {
    Packets packets;
    const auto keep = [&packets](AVPacket& packet) {
        packets.push_back(makePacket());
        av_packet_move_ref(packets.back().get(), &packet);
    };
    const std::size_t frames = encoder.blockFrames();
    const std::size_t samples = frames * encoder.channels();
    std::int64_t stamp = chunk.stamp;
    for (std::size_t at = 0; at < chunk.sound.size(); at += samples) {
        if (at == 0 && chunk.knowsBefore)
            encoder.warmUp(chunk.sound.data(), stamp);
        else
            encoder.encode(chunk.sound.data() + at, frames, stamp, keep);
        stamp += static_cast<std::int64_t>(frames);
    }
    encoder.finish(keep);
    return packets;
}

}  // namespace audio::ffmpeg
