// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/Layout.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {
namespace {

constexpr std::int64_t infinity = std::numeric_limits<std::int64_t>::max() / 4;

struct Range {
    std::int64_t from = 0;
    std::int64_t to = 0;
    bool holds(std::int64_t begin, std::int64_t end) const { return from <= begin && end <= to; }
};

/// A stretch of the new sound whose blocks are the source's, `shift` frames later.
struct Run {
    Range range;
    std::int64_t shift = 0;
    bool beginsSource = false;  ///< the source's very first frame is its first
    bool endsSource = false;    ///< the source's very last frame is its last
    bool onGrid = true;         ///< the sound lies in its old place on the grid
    std::vector<Range> untouched;
};

std::int64_t modulo(std::int64_t value, std::int64_t by) {
    return (value % by + by) % by;
}

/// Goes along the source's packets.
class Cursor {
  public:
    explicit Cursor(const PacketIndex& index) : index_(index) {}
    std::int64_t packet() const { return packet_; }
    std::int64_t centre() const { return centre_; }
    bool atEnd() const { return packet_ >= index_.packets(); }
    bool isLong() const { return index_.isLong(packet_); }
    void advance() {
        const std::int64_t size = index_.blockSize(isLong());
        ++packet_;
        if (!atEnd()) centre_ += (size + index_.blockSize(isLong())) / 4;
    }
    void back() {
        const std::int64_t size = index_.blockSize(isLong());
        --packet_;
        centre_ -= (size + index_.blockSize(isLong())) / 4;
    }
    /// To the last packet with a centre up to this, the first where there is none.
    void seek(std::int64_t centre) {
        while (packet_ > 0 && (atEnd() || centre_ > centre)) {
            if (atEnd()) {
                --packet_;
                continue;
            }
            back();
        }
        while (packet_ + 1 < index_.packets() && next() <= centre) advance();
    }

  private:
    std::int64_t next() const {
        return centre_ +
               (index_.blockSize(isLong()) + index_.blockSize(index_.isLong(packet_ + 1))) / 4;
    }
    const PacketIndex& index_;
    std::int64_t packet_ = 0;
    std::int64_t centre_ = 0;
};

/// Puts the layout together from front to back.
class Builder {
  public:
    Builder(const PacketIndex& source, const std::vector<Segment>& plan, bool canEncode)
        : source_(source), plan_(plan), canEncode_(canEncode), cursor_(source) {}

    Layout build() {
        for (const Segment& segment : plan_) layout_.frames += segment.length;
        chooseGrid();
        gatherRuns();
        if (runs_.empty()) throw CannotSplice("Nothing of its sound is left as it was.");
        for (const Run& run : runs_) place(run);
        closeEnd();
        settleOrigins();
        settleEnds();
        return std::move(layout_);
    }

  private:
    static constexpr std::int32_t fromNowhere = -1;
    struct Placed {
        std::int32_t packet = fromNowhere;  ///< of the source
        std::int32_t run = fromNowhere;
    };

    std::int64_t size(bool isLong) const { return source_.blockSize(isLong); }
    std::int64_t step(bool left, bool right) const { return (size(left) + size(right)) / 4; }
    std::int64_t grid() const { return size(false) / 2; }
    /// How far a block's window reaches to the side of such a neighbour.
    std::int64_t reach(bool isLong, bool neighbour) const {
        return size(isLong) / 4 + std::min(size(isLong), size(neighbour)) / 4;
    }

    std::int64_t shiftOf(const Segment& segment, std::int64_t position) const {
        return position - segment.sourceStart - source_.firstFrame();
    }

    /// The grid that most of the untouched sound lies on.
    void chooseGrid() {
        std::map<std::int64_t, std::int64_t> frames;
        std::int64_t position = 0;
        for (const Segment& segment : plan_) {
            if (segment.kind == Segment::Kind::Source)
                frames[modulo(shiftOf(segment, position), grid())] += segment.length;
            position += segment.length;
        }
        const auto most =
            std::max_element(frames.begin(), frames.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
        if (most == frames.end()) throw CannotSplice("Nothing of its sound is left as it was.");
        phase_ = most->first;
    }

    std::int64_t onGrid(std::int64_t shift) const {
        const std::int64_t off = modulo(shift - phase_, grid());
        return shift - (2 * off > grid() ? off - grid() : off);
    }

    /// The shift of rendered sound that comes from nowhere is its neighbour's.
    std::optional<std::int64_t> neighbourShift(std::size_t segment, std::int64_t position) const {
        if (!runs_.empty() && runs_.back().range.to == position) return runs_.back().shift;
        for (std::size_t i = segment; i < plan_.size(); ++i) {
            if (plan_[i].kind == Segment::Kind::Silence) break;
            if (plan_[i].sourceStart >= 0) return onGrid(shiftOf(plan_[i], position));
            position += plan_[i].length;
        }
        return std::nullopt;
    }

    void gatherRuns() {
        std::int64_t position = 0;
        for (std::size_t i = 0; i < plan_.size(); ++i) {
            const Segment& segment = plan_[i];
            const Range range{position, position + segment.length};
            position = range.to;
            if (segment.length == 0) continue;
            if (segment.kind == Segment::Kind::Silence) {
                silences_.push_back(range);
                continue;
            }
            const bool placed = segment.sourceStart >= 0;
            const auto shift =
                placed ? onGrid(shiftOf(segment, range.from)) : neighbourShift(i, range.from);
            if (shift) append(segment, range, *shift);
        }
        extendOutwards();
    }

    void append(const Segment& segment, Range range, std::int64_t shift) {
        const bool placed = segment.sourceStart >= 0;
        const bool exact =
            placed ? shiftOf(segment, range.from) == shift : runs_.empty() || runs_.back().onGrid;
        const bool goesOn = !runs_.empty() && runs_.back().range.to == range.from &&
                            runs_.back().shift == shift && runs_.back().onGrid == exact;
        if (!goesOn) {
            runs_.push_back({range, shift, placed && segment.sourceStart == 0, false, exact, {}});
        }
        Run& run = runs_.back();
        run.range.to = range.to;
        run.endsSource = placed && segment.sourceStart + segment.length == source_.frames();
        if (segment.kind != Segment::Kind::Source || !exact) return;
        if (!run.untouched.empty() && run.untouched.back().to == range.from)
            run.untouched.back().to = range.to;
        else
            run.untouched.push_back(range);
    }

    /// What lies outside the new sound is heard by nobody: there all is as at its ends.
    void extendOutwards() {
        if (runs_.empty()) return;
        Run& first = runs_.front();
        if (first.range.from == 0) {
            if (!first.untouched.empty() && first.untouched.front().from == 0)
                first.untouched.front().from = -infinity;
            first.range.from = -infinity;
        }
        Run& last = runs_.back();
        if (last.range.to == layout_.frames) {
            if (!last.untouched.empty() && last.untouched.back().to == layout_.frames)
                last.untouched.back().to = infinity;
            last.range.to = infinity;
        }
        if (!silences_.empty() && silences_.front().from == 0) silences_.front().from = -infinity;
        if (!silences_.empty() && silences_.back().to == layout_.frames)
            silences_.back().to = infinity;
    }

    bool front(const Run& run) const { return run.range.from == -infinity; }
    bool back(const Run& run) const { return run.range.to == infinity; }

    void place(const Run& run) {
        if (!seekFirst(run)) return;
        if (layout_.blocks.empty())
            fillBefore(cursor_.centre() + run.shift, cursor_.isLong());
        else
            fillBetween(cursor_.centre() + run.shift, cursor_.isLong());
        for (; !cursor_.atEnd() && mayGoOn(run); cursor_.advance())
            add(cursor_.isLong(), static_cast<std::int32_t>(cursor_.packet()),
                static_cast<std::int32_t>(&run - runs_.data()));
    }

    /// Puts the cursor on the run's first packet; false where it has none.
    bool seekFirst(const Run& run) {
        if (front(run)) {
            if (run.beginsSource) {
                cursor_.seek(0);
                return true;
            }
            cursor_.seek(-run.shift);
            const std::int64_t dropped = -(cursor_.centre() + run.shift);
            if (!canEncode_ || dropped < grid()) return true;
            layout_.silenceBefore = true;
        }
        const std::int64_t from = std::max<std::int64_t>(0, run.range.from);
        cursor_.seek(from - run.shift - size(true));
        if (!canEncode_ && run.beginsSource) {
            cursor_.seek(0);
            return fits(run);
        }
        for (; !cursor_.atEnd() && mayGoOn(run); cursor_.advance()) {
            const std::int64_t left = cursor_.centre() + run.shift - reach(cursor_.isLong(), false);
            if (left >= from && fits(run)) return true;
        }
        return false;
    }

    /// Whether there is room for the cursor's block behind the last one.
    bool fits(const Run& run) const {
        if (layout_.blocks.empty()) return true;
        return cursor_.centre() + run.shift - centre_ >=
               step(layout_.blocks.back().isLong, cursor_.isLong());
    }

    /// Whether the cursor's block is one of the run's.
    bool mayGoOn(const Run& run) const {
        const std::int64_t centre = cursor_.centre() + run.shift;
        const bool enough = !layout_.blocks.empty() && centre_ >= end(run);
        if (back(run) || (!canEncode_ && run.endsSource)) return !enough;
        return centre + reach(cursor_.isLong(), false) <= run.range.to;
    }
    std::int64_t end(const Run& run) const { return std::min(run.range.to, layout_.frames); }

    void add(bool isLong, std::int32_t packet = fromNowhere, std::int32_t run = fromNowhere) {
        if (layout_.blocks.empty())
            centre_ = layout_.firstCentre;
        else
            centre_ += step(layout_.blocks.back().isLong, isLong);
        layout_.blocks.push_back({isLong, Origin::Coded});
        placed_.push_back({packet, run});
    }

    /// Whether a long block there sees nothing but silence.
    bool quiet(std::int64_t centre) const {
        return hasLong() &&
               std::any_of(silences_.begin(), silences_.end(), [&](const Range& range) {
                   return range.holds(centre - size(true) / 2, centre + size(true) / 2);
               });
    }

    /// Whether a long block there sees nothing of silence. Beside it short ones do better.
    bool apartFromSilence(std::int64_t centre) const {
        return hasLong() &&
               std::none_of(silences_.begin(), silences_.end(), [&](const Range& range) {
                   return range.from < centre + size(true) / 2 &&
                          centre - size(true) / 2 < range.to;
               });
    }
    bool mayBeLong(std::int64_t centre) const { return quiet(centre) || apartFromSilence(centre); }
    /// Streams of one block size, and short ones, have no long blocks whose mode is known.
    bool hasLong() const { return source_.mode(true) >= 0; }

    /// Blocks from somewhere up to frame 0 to the first block of a run.
    void fillBefore(std::int64_t right, bool rightIsLong) {
        std::vector<bool> found;
        std::int64_t centre = right;
        bool isLong = rightIsLong;
        const bool bound = !canEncode_ && rightIsLong;  // that packet's flags stay as they are
        while (centre > 0) {
            const std::int64_t longCentre = centre - step(true, isLong);
            const bool asTold = bound && found.empty();
            const bool suits =
                !layout_.silenceBefore && mayBeLong(longCentre) && longCentre >= step(true, false);
            const bool takesLong = asTold ? source_.longBeforeFirst() : suits;
            centre -= step(takesLong, isLong);
            isLong = takesLong;
            found.push_back(takesLong);
        }
        layout_.firstCentre = centre;
        for (auto block = found.rbegin(); block != found.rend(); ++block) add(*block);
    }

    /// Blocks from the last one to the first block of the next run, or to the end of the sound
    /// where that comes first.
    void fillBetween(std::int64_t right, bool rightIsLong) {
        while (centre_ < layout_.frames) {
            const bool left = layout_.blocks.back().isLong;
            const std::int64_t missing = right - centre_;
            if (missing == step(left, rightIsLong)) return;
            const bool takesLong = missing >= step(left, true) + step(true, rightIsLong) &&
                                   quiet(centre_ + step(left, true));
            if (!takesLong && missing < step(left, false) + step(false, rightIsLong))
                throw CannotSplice("Its blocks do not fit together.");
            add(takesLong);
        }
    }

    /// Blocks from the last one to the end of the sound.
    void closeEnd() {
        while (layout_.blocks.empty() || centre_ < layout_.frames) {
            const bool left = !layout_.blocks.empty() && layout_.blocks.back().isLong;
            const bool bound = left && !canEncode_ && placed_.back().packet != fromNowhere;
            const bool takesLong =
                bound ? stated(placed_.back().packet, 1) : mayBeLong(centre_ + step(left, true));
            add(takesLong);
        }
    }

    void settleOrigins() {
        std::int64_t centre = layout_.firstCentre;
        for (std::int64_t i = 0; i < layout_.size(); ++i) {
            const auto at = static_cast<std::size_t>(i);
            if (i > 0) centre += step(layout_.isLong(i - 1), layout_.isLong(i));
            layout_.blocks[at].origin = originOf(i, centre);
            if (layout_.blocks[at].origin == Origin::Kept) noteKept(i, placed_[at].packet);
        }
        if (layout_.kept.empty()) throw CannotSplice("Nothing of its sound is left as it was.");
    }

    Origin originOf(std::int64_t block, std::int64_t centre) {
        const Placed& placed = placed_[static_cast<std::size_t>(block)];
        const bool isLong = layout_.isLong(block);
        const std::int64_t from =
            block == 0 ? centre : centre - reach(isLong, layout_.isLong(block - 1));
        const std::int64_t to = block + 1 == layout_.size()
                                    ? centre
                                    : centre + reach(isLong, layout_.isLong(block + 1));
        if (keeps(placed, block, from, to)) return Origin::Kept;
        if (std::any_of(silences_.begin(), silences_.end(),
                        [&](const Range& range) { return range.holds(from, to); }))
            return Origin::Silent;
        if (!canEncode_) {
            if (standsAsItIs(placed, block)) return Origin::Kept;
            throw CannotSplice(noEncoder);
        }
        const bool free = placed.run != fromNowhere && !runOf(placed).onGrid;
        return free ? Origin::CodedFree : Origin::Coded;
    }

    bool keeps(const Placed& placed, std::int64_t block, std::int64_t from, std::int64_t to) const {
        if (placed.packet == fromNowhere || !neighboursAsStated(placed.packet, block)) return false;
        const std::vector<Range>& untouched = runOf(placed).untouched;
        return std::any_of(untouched.begin(), untouched.end(),
                           [&](const Range& range) { return range.holds(from, to); });
    }
    const Run& runOf(const Placed& placed) const {
        return runs_[static_cast<std::size_t>(placed.run)];
    }

    /// The bytes of a long block say how long its neighbours are.
    bool neighboursAsStated(std::int64_t packet, std::int64_t block) const {
        if (!source_.isLong(packet) || size(true) == size(false)) return true;
        const bool left = block == 0 || layout_.isLong(block - 1) == stated(packet, -1);
        const bool right =
            block + 1 == layout_.size() || layout_.isLong(block + 1) == stated(packet, 1);
        return left && right;
    }
    bool stated(std::int64_t packet, std::int64_t side) const {
        const std::int64_t neighbour = packet + side;
        if (neighbour < 0) return source_.longBeforeFirst();
        return neighbour < source_.packets() ? source_.isLong(neighbour) : source_.longBehindLast();
    }

    /// Without an encoder: the source's end beside silence. What is heard beyond it is checked when
    /// the file is finished.
    bool standsAsItIs(const Placed& placed, std::int64_t block) const {
        if (placed.packet == fromNowhere || !neighboursAsStated(placed.packet, block)) return false;
        const Run& run = runOf(placed);
        const std::int64_t centre = source_.centre(placed.packet) - source_.firstFrame();
        const bool atFront = run.beginsSource && centre < size(true);
        const bool atEnd = run.endsSource && centre > source_.frames() - size(true);
        return !run.untouched.empty() && (atFront || atEnd);
    }

    void noteKept(std::int64_t block, std::int64_t packet) {
        if (!layout_.kept.empty()) {
            Layout::Kept& last = layout_.kept.back();
            if (last.first + last.count == block && last.sourceFirst + last.count == packet) {
                ++last.count;
                return;
            }
        }
        layout_.kept.push_back({block, 1, packet});
    }

    void settleEnds() {
        const Placed& first = placed_.front();
        layout_.longBeforeFirst = first.packet >= 0 && stated(first.packet, -1);
        const Placed& last = placed_.back();
        layout_.longBehindLast = last.packet >= 0 && stated(last.packet, 1);
        const Segment& front = plan_.front();
        if (front.kind == Segment::Kind::Source && front.sourceStart == 0 && first.packet == 0)
            layout_.granuleOffset = std::max<std::int64_t>(0, source_.granuleOffset());
    }

  public:
    static constexpr const char* noEncoder =
        "Its set-up header is none that libvorbis makes, so that no packets could be added.";

  private:
    const PacketIndex& source_;
    const std::vector<Segment>& plan_;
    bool canEncode_;
    Cursor cursor_;
    std::int64_t phase_ = 0;
    std::vector<Run> runs_;
    std::vector<Range> silences_;
    std::vector<Placed> placed_;
    std::int64_t centre_ = 0;  ///< of the last block
    Layout layout_;
};

}  // namespace

std::int64_t Layout::count(bool (*wanted)(Origin)) const {
    return std::count_if(blocks.begin(), blocks.end(),
                         [wanted](const Block& block) { return wanted(block.origin); });
}

Layout layOut(const PacketIndex& source, const std::vector<Segment>& plan, bool canEncode) {
    return Builder(source, plan, canEncode).build();
}

}  // namespace audio::vorbis
