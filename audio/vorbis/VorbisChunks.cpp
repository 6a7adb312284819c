// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/VorbisChunks.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "audio/FileError.h"
#include "audio/parallel/Budget.h"

namespace audio::vorbis {
namespace {

constexpr std::int64_t chunkSamples = 1 << 21;
constexpr std::int64_t shortestChunk = 1 << 16;
// Shorter ones would be mostly run-in.
constexpr std::int64_t worthwhileChunk = 1 << 18;
// Two or four cores then have the same number each.
constexpr std::int64_t chunkGroup = 4;
// In hops of long blocks: after so many an encoder has forgotten where it began.
constexpr std::int64_t runInHops = 64;
// In long blocks: before these an encoder still hears its own beginning.
constexpr std::int64_t deafBlocks = 2;
// The search for attacks keeps a running sum over this many frames, which it begins anew as often:
// encoders that begin whole rounds apart round alike.
constexpr std::int64_t searchRound = 960;
// An encoder takes its own beginning for an attack: so many short blocks usually come after the
// first, or else another number.
constexpr std::array<std::int64_t, 4> shortBlocksFirst = {1, 2, 0, 3};

std::int64_t hopOf(const VorbisEncoder& encoder) {
    return encoder.longBlock() / 2;
}

// The place of the blocks and the search for attacks begin anew together after so many frames.
std::int64_t periodOf(const VorbisEncoder& encoder) {
    return std::lcm(hopOf(encoder), searchRound);
}

std::int64_t runInOf(const VorbisEncoder& encoder) {
    return runInHops * hopOf(encoder);
}

// The last frame up to `latest` where an encoder can begin that is to have a block like this one,
// a long one after `shorts` short ones; negative where the stream does not reach back so far.
std::int64_t startFor(const VorbisEncoder& encoder, const VorbisBlock& block, std::int64_t shorts,
                      std::int64_t latest) {
    const std::int64_t shortHop = encoder.shortBlock() / 2;
    const std::int64_t firstLong = (shortHop + hopOf(encoder)) / 2 + shorts * shortHop;
    const std::int64_t place = block.isLong ? block.centre - firstLong : block.centre;
    const std::int64_t hop = block.isLong ? hopOf(encoder) : shortHop;
    std::int64_t start = latest / searchRound * searchRound;
    while (start >= 0 && (place - start) % hop != 0) start -= searchRound;
    return start;
}

// Memory or threads may run out, here or on another thread.
template <typename Work>
void named(const std::filesystem::path& file, Work work) try {
    work();
} catch (const platform::Error&) {
    throw;
} catch (const std::exception& error) {
    throw fileError(file, std::string("could not be encoded: ") + error.what());
}

}  // namespace

VorbisChunking VorbisChunking::of(std::int64_t frames, int channels, int threads) {
    VorbisChunking chunking;
    chunking.threads = threads;
    const std::int64_t longest = std::max(chunkSamples / channels, shortestChunk);
    chunking.chunkFrames = longest;
    if (frames < 0) return chunking;
    const std::int64_t most = chunkGroup * (frames / (chunkGroup * longest) + 1);
    const std::int64_t worthwhile = frames / std::min(worthwhileChunk, longest);
    const std::int64_t count = std::clamp<std::int64_t>(worthwhile, 1, most);
    chunking.chunkFrames = std::min(frames / count + 1, longest);
    return chunking;
}

VorbisChunks::VorbisChunks(const std::filesystem::path& file, const Format& format,
                           const VorbisChunking& chunking, Take take)
    : file_(file),
      format_(format),
      chunking_(chunking),
      take_(std::move(take)),
      windows_(file, format),
      headers_(windows_.headers()),
      running_(parallel::threadCount(chunking.threads), 1) {
    sound_.planes.resize(static_cast<std::size_t>(format.channels));
}

VorbisChunks::~VorbisChunks() {
    stopping_ = true;
    running_.clear();
}

void VorbisChunks::added() {
    VorbisBlock block;
    while (windows_.next(sound_, block)) decided_.push_back(block);
    // What lies behind the last block decides on its windows.
    const std::int64_t reach = 4 * windows_.longBlock() + 2'048;
    while (sound_.end() >= first_ + chunking_.chunkFrames + reach)
        named(file_, [this] { start(first_ + chunking_.chunkFrames); });
}

void VorbisChunks::finish() {
    sound_.complete = true;
    named(file_, [this] {
        start(sound_.end());
        while (!running_.empty()) join();
    });
}

void VorbisChunks::start(std::int64_t end) {
    VorbisChunk chunk;
    chunk.first = first_;
    chunk.end = end;
    const auto settled = std::find_if(
        decided_.begin(), decided_.end(),
        [&](const VorbisBlock& block) { return block.centre >= first_ - runInOf(windows_); });
    if (first_ == 0) {
        chunk.starts = {0};
    } else {
        chunk.settled = settled->centre;
        chunk.starts = startsFor(static_cast<std::size_t>(settled - decided_.begin()));
    }
    chunk.sound = sound_;
    first_ = end;
    dropSound();
    run(std::move(chunk));
}

std::vector<std::int64_t> VorbisChunks::startsFor(std::size_t settled) const {
    std::size_t like = settled;
    while (like > 0 && !decided_[like].isLong) --like;
    std::vector<std::int64_t> starts;
    std::int64_t latest = decided_[settled].centre - deafBlocks * windows_.longBlock();
    for (int i = 0; i < chunking_.tries && latest >= sound_.from; ++i) {
        const std::size_t shorts = static_cast<std::size_t>(i) % shortBlocksFirst.size();
        const std::int64_t start =
            startFor(windows_, decided_[like], shortBlocksFirst[shorts], latest);
        if (start >= sound_.from) starts.push_back(start);
        if (shorts + 1 == shortBlocksFirst.size()) latest -= periodOf(windows_);
    }
    // The very beginning is always in step.
    if (sound_.from == 0) starts.push_back(0);
    return starts;
}

// Keeps what the next chunk's encoder may begin with.
void VorbisChunks::dropSound() {
    const std::int64_t rounds = chunking_.tries / std::int64_t{shortBlocksFirst.size()} + 1;
    const std::int64_t keep =
        runInOf(windows_) + deafBlocks * windows_.longBlock() + rounds * periodOf(windows_);
    const std::int64_t from = std::clamp(first_ - keep, sound_.from, sound_.end());
    for (std::vector<float>& plane : sound_.planes)
        plane.erase(plane.begin(), plane.begin() + (from - sound_.from));
    sound_.from = from;
    while (!decided_.empty() && decided_.front().nextCentre < from) decided_.pop_front();
}

void VorbisChunks::run(VorbisChunk chunk) {
    while (running_.full()) join();
    running_.begin([this, chunk = std::move(chunk)]() mutable { return encode(std::move(chunk)); });
}

VorbisChunks::Result VorbisChunks::encode(VorbisChunk chunk) const {
    Result result;
    for (const std::int64_t start : chunk.starts) {
        result.encoder = inStep(chunk, start);
        if (result.encoder) break;
    }
    if (result.encoder) result.packets = packets(*result.encoder, chunk);
    result.chunk = std::move(chunk);
    return result;
}

// An encoder from `start` whose next block is the settled one; none where that has no block there.
std::unique_ptr<VorbisEncoder> VorbisChunks::inStep(const VorbisChunk& chunk,
                                                    std::int64_t start) const {
    auto encoder = std::make_unique<VorbisEncoder>(file_, format_, start);
    VorbisBlock block;
    while (encoder->nextCentre() < chunk.settled && encoder->next(chunk.sound, block)) goOn();
    if (encoder->nextCentre() != chunk.settled) return nullptr;
    if (encoder->headers() != headers_)
        throw fileError(file_, "could not be encoded: two Ogg Vorbis encoders set up differently");
    return encoder;
}

std::vector<VorbisPacket> VorbisChunks::packets(VorbisEncoder& encoder,
                                                const VorbisChunk& chunk) const {
    std::vector<VorbisPacket> packets;
    VorbisBlock block;
    while ((encoder.nextCentre() < chunk.end || chunk.sound.complete) &&
           encoder.next(chunk.sound, block)) {
        goOn();
        std::vector<std::uint8_t> bytes = encoder.packet();
        if (block.centre >= chunk.first) packets.push_back({block, std::move(bytes)});
    }
    return packets;
}

void VorbisChunks::goOn() const {
    if (stopping_) throw fileError(file_, "is no longer wanted");  // nobody hears of it
}

void VorbisChunks::join() {
    Result result = running_.take();
    const bool fits =
        result.encoder &&
        (!left_ || (!result.packets.empty() && result.packets.front().block.follows(last_)));
    if (fits) {
        left_ = std::move(result.encoder);
    } else {
        ++carriedOn_;
        result.packets = packets(*left_, result.chunk);
    }
    for (const VorbisPacket& packet : result.packets) take_(packet);
    if (!result.packets.empty()) last_ = result.packets.back().block;
}

}  // namespace audio::vorbis
