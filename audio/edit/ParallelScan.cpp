// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/ParallelScan.h"

#include <algorithm>
#include <atomic>
#include <future>

#include "audio/edit/EditReader.h"
#include "audio/parallel/Budget.h"
#include "audio/parallel/Launch.h"
#include "audio/pcm/Blocks.h"

namespace audio::edit {
namespace {

constexpr std::int64_t mostPieces = 16;
constexpr std::int64_t shortestPieceSeconds = 10;
constexpr std::size_t mostBlockFrames = 16384;

bool seeksFast(const EditList& list) {
    return std::ranges::all_of(list.segments(), [](const Segment& segment) {
        return segment.silent() || segment.material->seeksFast();
    });
}

/// What the threads of one scan share.
class Scan {
  public:
    Scan(const EditList& list, const std::vector<FrameRange>& ranges, Work& work,
         const std::function<void(std::size_t, std::span<const float>)>& take)
        : list_(list), ranges_(ranges), work_(work), take_(take) {}

    /// Takes range after range that no other thread has taken.
    void run() try {
        while (!failed_) {
            const std::size_t number = next_++;
            if (number >= ranges_.size()) return;
            readRange(number);
        }
    } catch (...) {
        failed_ = true;
        throw;
    }

  private:
    void readRange(std::size_t number) {
        const auto channels = static_cast<std::size_t>(list_.shape().channels);
        const std::size_t blockFrames = pcm::blockFrames(mostBlockFrames, list_.shape().channels);
        std::vector<float> block(blockFrames * channels);
        EditReader reader(list_.slice(ranges_[number]));
        while (const std::size_t got = reader.read(block.data(), blockFrames)) {
            if (failed_) return;
            take_(number, std::span<const float>(block).first(got * channels));
            work_.advance(static_cast<std::int64_t>(got));
        }
    }

    const EditList& list_;
    const std::vector<FrameRange>& ranges_;
    Work& work_;
    const std::function<void(std::size_t, std::span<const float>)>& take_;
    std::atomic<std::size_t> next_ = 0;
    std::atomic<bool> failed_ = false;
};

}  // namespace

std::vector<FrameRange> piecesOf(const EditList& list, FrameRange range, std::int64_t unit) {
    const std::int64_t frames = range.end - range.start;
    const std::int64_t shortest = shortestPieceSeconds * list.shape().sampleRate;
    const std::int64_t count =
        seeksFast(list) ? std::clamp<std::int64_t>(frames / shortest, 1, mostPieces) : 1;
    const std::int64_t length = ((frames + count - 1) / count + unit - 1) / unit * unit;
    std::vector<FrameRange> pieces;
    for (std::int64_t start = range.start; start < range.end; start += length)
        pieces.push_back({start, std::min(start + length, range.end)});
    return pieces;
}

void scan(const EditList& list, const std::vector<FrameRange>& ranges, Work& work,
          const std::function<void(std::size_t, std::span<const float>)>& take) {
    Scan scan(list, ranges, work, take);
    const auto cores = static_cast<std::size_t>(parallel::threadCount());
    const std::size_t threads = std::min(cores, ranges.size());
    std::vector<std::future<void>> others;
    for (std::size_t i = 1; i < threads; ++i)
        others.push_back(parallel::launch("scan", [&scan] { scan.run(); }));
    scan.run();
    for (auto& other : others) other.get();
}

}  // namespace audio::edit
