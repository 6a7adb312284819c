// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/packets/Layout.h"

#include <algorithm>
#include <map>

namespace audio::packets {
namespace {

std::int64_t modulo(std::int64_t value, std::int64_t size) {
    return (value % size + size) % size;
}

std::int64_t roundUp(std::int64_t value, std::int64_t size) {
    return (value + size - 1) / size;
}

/// Fewer are not worth two seams.
std::int64_t leastKept(const Grid& grid) {
    return 2 * grid.search + 4;
}

/// Lays runs out one by one.
class Laying {
  public:
    Laying(const Grid& grid, const std::vector<Run>& runs) : grid_(grid), runs_(runs) {
        for (const Run& run : runs) layout_.frames += run.frames;
        remainder_ = bestRemainder();
        layout_.skip = skip();
        layout_.packets = roundUp(layout_.skip + layout_.frames, grid.size);
    }

    Layout lay() {
        std::int64_t start = 0;
        for (std::size_t i = 0; i < runs_.size(); ++i) {
            if (onGrid(runs_[i], start)) keep(i, start);
            start += runs_[i].frames;
        }
        encodeUpTo(layout_.packets);
        return std::move(layout_);
    }

  private:
    /// What the new stream's trimming leaves over, divided by the size of a packet, if this run's
    /// packets shall lie on its grid.
    std::int64_t remainderFor(const Run& run, std::int64_t start) const {
        return modulo(run.source + grid_.skip - start, grid_.size);
    }
    bool onGrid(const Run& run, std::int64_t start) const {
        return run.source >= 0 && remainderFor(run, start) == remainder_;
    }

    std::int64_t bestRemainder() const {
        std::map<std::int64_t, std::int64_t> frames;
        std::int64_t start = 0;
        for (const Run& run : runs_) {
            if (run.source >= 0) frames[remainderFor(run, start)] += run.frames;
            start += run.frames;
        }
        const auto best =
            std::max_element(frames.begin(), frames.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
        return best == frames.end() ? modulo(grid_.leastSkip, grid_.size) : best->first;
    }

    std::int64_t skip() const {
        const auto atLeast = [this](std::int64_t least) {
            return least + modulo(remainder_ - least, grid_.size);
        };
        if (runs_.empty() || !onGrid(runs_.front(), 0)) return atLeast(grid_.leastSkip);
        const std::int64_t all = runs_.front().source + grid_.skip;
        return runs_.front().source == 0 ? all : std::min(all, atLeast(grid_.preRoll));
    }

    void keep(std::size_t number, std::int64_t start) {
        const Run& run = runs_[number];
        const std::int64_t shift = (start + layout_.skip - run.source - grid_.skip) / grid_.size;
        const std::int64_t end = start + layout_.skip + run.frames;
        Piece piece;
        if (number > 0) piece.first = roundUp(start + layout_.skip + grid_.preRoll, grid_.size);
        piece.end =
            number + 1 < runs_.size() ? (end - grid_.overlap) / grid_.size : layout_.packets;
        piece.first = std::max({piece.first, shift, std::int64_t{0}});
        piece.end = std::min({piece.end, grid_.count + shift, layout_.packets});
        piece.source = piece.first - shift;
        if (piece.end - piece.first < leastKept(grid_)) return;
        encodeUpTo(piece.first);
        layout_.pieces.push_back(piece);
    }

    void encodeUpTo(std::int64_t end) {
        const std::int64_t first = layout_.pieces.empty() ? 0 : layout_.pieces.back().end;
        if (end > first) layout_.pieces.push_back({first, end, -1});
    }

    const Grid& grid_;
    const std::vector<Run>& runs_;
    std::int64_t remainder_ = 0;
    Layout layout_;
};

}  // namespace

bool Layout::keepsAny() const {
    return std::any_of(pieces.begin(), pieces.end(),
                       [](const Piece& piece) { return piece.kept(); });
}

Layout layOut(const Grid& grid, const std::vector<Run>& runs) {
    return Laying(grid, runs).lay();
}

}  // namespace audio::packets
