// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/ReservoirFit.h"

#include <algorithm>
#include <deque>
#include <optional>

namespace audio::mpeg {
namespace {

// Frames at either end that give way first, for how many steps these alone, and how many at all.
constexpr std::size_t edge = 24;
constexpr int edgeSteps = 8;
constexpr int mostSteps = 12;

int mainSlot(const FrameHeader& header) {
    return header.size() - header.overhead();
}

FrameHeader unpadded(FrameHeader header, int bitRateIndex) {
    header.word &= ~0x200U;
    header.padding = false;
    return header.withBitRateIndex(bitRateIndex);
}

class Fitter {
  public:
    explicit Fitter(const FitProblem& problem) : problem_(problem) {
        for (const LogicalFrame& frame : problem.frames) choices_.push_back({&frame});
    }

    std::vector<FittedFrame> solve() {
        if (feasible()) return forwards();
        for (int steps = 1; steps <= mostSteps; ++steps) {
            addCheaper(steps);
            if (feasible()) return forwards();
        }
        return {};
    }

  private:
    void addCheaper(int steps) {
        const std::size_t count = choices_.size();
        if (count <= 2 * edge || steps > edgeSteps) {
            addCheaper(0, count, steps);
        } else {
            addCheaper(0, edge, steps);
            addCheaper(count - edge, edge, steps);
        }
    }

    // An encoding with other block types would not fit its neighbours' windows.
    void addCheaper(std::size_t first, std::size_t count, int steps) {
        encodings_.push_back(problem_.cheaper(first, count, steps));
        const auto& frames = encodings_.back();
        for (std::size_t i = 0; i < frames.size(); ++i) {
            auto& choices = choices_[first + i];
            if (frames[i].info.sameBlocks(choices.front()->info) &&
                frames[i].main.size() < choices.back()->main.size()) {
                choices.push_back(&frames[i]);
            }
        }
    }

    // A cheaper encoding goes into the slot of the one it replaces.
    int largestSlot(std::size_t n) const {
        const FrameHeader& own = choices_[n].front()->header;
        return mainSlot(problem_.freeSlots ? unpadded(own, 14) : own);
    }

    // needs_[n]: bytes before frame n's slot that it and those behind it cannot do without.
    bool feasible() {
        needs_.assign(choices_.size() + 1, problem_.needBehind);
        for (std::size_t n = choices_.size(); n-- > 0;) {
            const LogicalFrame& smallest = *choices_[n].back();
            const int length = static_cast<int>(smallest.main.size());
            needs_[n] = std::max(0, needs_[n + 1] + length - largestSlot(n));
            if (needs_[n] > longestReservoir(smallest.header)) return false;
        }
        return needs_[0] <= problem_.roomBefore;
    }

    std::vector<FittedFrame> forwards() const {
        std::vector<FittedFrame> fitted;
        int room = problem_.roomBefore;
        for (std::size_t n = 0; n < choices_.size(); ++n) {
            for (const LogicalFrame* frame : choices_[n]) {
                const int length = static_cast<int>(frame->main.size());
                const auto slot = slotFor(n, length + needs_[n + 1] - room);
                if (!slot) continue;
                room = std::min(room + mainSlot(*slot) - length, longestReservoir(*slot));
                fitted.push_back({*frame, *slot});
                break;
            }
            if (fitted.size() != n + 1) return {};
        }
        return fitted;
    }

    // The smallest slot that frame n may have and that gives room for so many bytes.
    std::optional<FrameHeader> slotFor(std::size_t n, int bytes) const {
        const FrameHeader& own = choices_[n].front()->header;
        if (!problem_.freeSlots) {
            return mainSlot(own) >= bytes ? std::optional(own) : std::nullopt;
        }
        for (int index = 1; index <= 14; ++index) {
            const FrameHeader slot = unpadded(own, index);
            if (mainSlot(slot) >= std::max(bytes, 0)) return slot;
        }
        return std::nullopt;
    }

    const FitProblem& problem_;
    std::vector<std::vector<const LogicalFrame*>> choices_;  // best first
    std::deque<std::vector<LogicalFrame>> encodings_;
    std::vector<int> needs_;
};

}  // namespace

std::vector<FittedFrame> fit(const FitProblem& problem) {
    return Fitter(problem).solve();
}

}  // namespace audio::mpeg
