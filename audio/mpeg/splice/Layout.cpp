// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/Layout.h"

#include <algorithm>
#include <optional>

namespace audio::mpeg {
namespace {

// The stated delay and padding are twelve bits each.
constexpr std::int64_t mostGap = 4095;
// Kept runs shorter than this are not worth their seams: the searches for matching windows and the
// encoder's look-ahead on both sides have to fit in.
constexpr std::int64_t shortestInside = 24;
constexpr std::int64_t shortestAtEnd = 12;

std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}
std::int64_t ceilDivide(std::int64_t a, std::int64_t b) {
    return -floorDivide(-a, b);
}

// A source segment where the new sound has it.
struct Run {
    std::int64_t position = 0;  // gapless, in the new sound
    std::int64_t length = 0;
    std::int64_t raw = 0;  // its first sample in the source
    bool first = false;    // the new sound begins with it
    bool last = false;
    bool fromStart = false;  // and it begins where the source's sound does
    bool toEnd = false;
};

// Whether the stream states its gaps, and the raw index where its sound begins.
struct Start {
    std::int64_t raw = 0;
    bool statesGaps = false;
};

class Planner {
  public:
    Planner(const FrameIndex& index, const std::vector<Segment>& plan,
            const std::function<bool(std::int64_t)>& needsCarrier)
        : index_(index),
          needsCarrier_(needsCarrier),
          geometry_(Geometry::of(index.header().layer, index.header().samples())) {
        for (std::size_t i = 0; i < plan.size(); ++i) addSegment(plan[i], i + 1 == plan.size());
    }

    Layout best() {
        Layout best;
        std::int64_t most = -1;
        for (const Start& start : candidates()) {
            Layout layout = make(start);
            if (layout.keptFrames() > most) {
                most = layout.keptFrames();
                best = std::move(layout);
            }
        }
        return best;
    }

  private:
    void addSegment(const Segment& segment, bool last) {
        if (!segment.sound && segment.length > 0) {
            Run run;
            run.position = length_;
            run.length = segment.length;
            run.raw = segment.sourceStart + index_.gaplessStart();
            run.first = length_ == 0;
            run.last = last;
            run.fromStart = segment.sourceStart == 0;
            run.toEnd = segment.sourceStart + segment.length == index_.gaplessLength();
            if (segment.sourceStart < 0 ||
                segment.sourceStart + segment.length > index_.gaplessLength()) {
                throw platform::Error("A part of the new sound lies outside the source.");
            }
            runs_.push_back(run);
        }
        length_ += segment.length;
    }

    std::vector<Start> candidates() const {
        const bool stated = index_.info() && index_.info()->delay;
        std::vector<Start> starts;
        // A VBRI frame, whose table would have to follow, gives way to an info frame, which
        // decoders do not take without a word on the gaps.
        const bool vbri = index_.info() && index_.info()->kind == InfoTag::Kind::Vbri;
        if (stated) {
            starts.push_back({index_.gaplessStart(), true});
        } else if (!geometry_.infoFrame || (length_ % geometry_.frame == 0 && !vbri)) {
            starts.push_back({0, false});
        }
        if (!geometry_.infoFrame) return starts;
        std::vector<Run> longest = runs_;
        std::sort(longest.begin(), longest.end(),
                  [](const Run& a, const Run& b) { return a.length > b.length; });
        if (longest.size() > 8) longest.resize(8);
        for (const Run& run : longest) {
            starts.push_back({run.first ? startFor(run) : congruentStart(run), true});
        }
        starts.push_back({geometry_.codecDelay, true});
        return starts;
    }

    // The lowest start from the encoder's delay on at which the run keeps its place on the grid.
    std::int64_t congruentStart(const Run& run) const {
        const std::int64_t offset = run.raw - run.position - geometry_.codecDelay;
        return geometry_.codecDelay + offset -
               floorDivide(offset, geometry_.frame) * geometry_.frame;
    }

    // For the run that the new sound begins with: as few frames as possible before its first
    // sample.
    std::int64_t startFor(const Run& run) const {
        const std::int64_t lead = leadFrame(run);
        const std::int64_t carriers = carriersBefore(run, lead);
        return run.raw - (lead - carriers) * geometry_.frame;
    }

    // The first source frame that the run's first sample depends on.
    std::int64_t leadFrame(const Run& run) const {
        if (run.fromStart) return 0;
        // Frame F ends to matter at frame·(F+1) + tail.
        const std::int64_t before = run.raw - geometry_.frame - geometry_.tail;
        return std::max<std::int64_t>(0, floorDivide(before, geometry_.frame) + 1);
    }

    std::int64_t carriersBefore(const Run& run, std::int64_t lead) const {
        // Decoders drop 529 samples at least, so a sound that begins at once needs a frame before.
        if (run.raw - lead * geometry_.frame < geometry_.decoderDelay) return 1;
        return lead > 0 && needsCarrier_(lead) ? 1 : 0;
    }

    Layout make(const Start& start) const {
        Layout layout;
        layout.start = start.raw;
        layout.statesGaps = start.statesGaps;
        layout.length = length_;
        if (start.statesGaps &&
            (start.raw < geometry_.decoderDelay || start.raw > geometry_.decoderDelay + mostGap)) {
            return layout;
        }
        layout.frames = frameCount(layout);
        std::int64_t next = 0;
        for (const Run& run : runs_) {
            const auto kept = keptPart(run, layout);
            if (!kept) continue;
            if (kept->first < next) continue;
            const bool silent = next == 0 && run.first && keepsLead(run, layout);
            if (kept->first > next) {
                layout.pieces.push_back({silent ? Piece::Kind::Silent : Piece::Kind::Encoded, next,
                                         kept->first - next, 0});
            }
            layout.pieces.push_back(*kept);
            next = kept->end();
        }
        if (next < layout.frames) {
            layout.pieces.push_back({Piece::Kind::Encoded, next, layout.frames - next, 0});
        }
        return layout;
    }

    std::int64_t frameCount(const Layout& layout) const {
        const std::int64_t fewest = ceilDivide(length_ + layout.start, geometry_.frame);
        // A source that is only changed in place, or whose end stays, keeps all its last frames.
        std::int64_t all = fewest;
        const Run* last = !runs_.empty() && runs_.back().last ? &runs_.back() : nullptr;
        if (layout.start == index_.gaplessStart() && length_ == index_.gaplessLength()) {
            all = index_.frameCount();
        } else if (last && last->toEnd && aligned(*last, layout)) {
            all = index_.frameCount() + shift(*last, layout);
        }
        const std::int64_t padding = all * geometry_.frame - layout.delay(geometry_) - length_;
        return all >= fewest && (!layout.statesGaps || padding <= mostGap) ? all : fewest;
    }

    bool aligned(const Run& run, const Layout& layout) const {
        return (run.position + layout.start - run.raw) % geometry_.frame == 0;
    }
    // By how many frames the run moves.
    std::int64_t shift(const Run& run, const Layout& layout) const {
        return (run.position + layout.start - run.raw) / geometry_.frame;
    }

    std::optional<Piece> keptPart(const Run& run, const Layout& layout) const {
        if (!aligned(run, layout)) return std::nullopt;
        const std::int64_t moved = shift(run, layout);
        const std::int64_t begin = run.position + layout.start;
        const std::int64_t end = begin + run.length;
        std::int64_t first = ceilDivide(begin, geometry_.frame);
        std::int64_t stop = floorDivide(end - geometry_.tail, geometry_.frame);
        bool atEdge = false;
        if (run.first && keepsLead(run, layout)) {
            first = leadFrame(run) + moved;
            if (first < 0) return std::nullopt;
            atEdge = true;
        }
        if (run.last && (layout.statesGaps || end == layout.frames * geometry_.frame)) {
            stop = layout.frames;
            atEdge = true;
        }
        stop = std::min(stop, index_.frameCount() + moved);
        // A last frame whose end is missing is one only where nothing follows.
        if (index_.lastFrameCut() && stop == index_.frameCount() + moved && stop < layout.frames)
            --stop;
        first = std::max(first, moved);
        if (stop - first < (atEdge ? shortestAtEnd : shortestInside)) return std::nullopt;
        return Piece{Piece::Kind::Kept, first, stop - first, first - moved};
    }

    // Whether the frames before the run's first sample can stand before it in the new stream.
    bool keepsLead(const Run& run, const Layout& layout) const {
        const std::int64_t lead = leadFrame(run);
        const std::int64_t first = lead + shift(run, layout);
        if (first < 0) return false;
        if (first == 0) return lead == 0 || !needsCarrier_(lead);
        return layout.statesGaps;
    }

    const FrameIndex& index_;
    const std::function<bool(std::int64_t)>& needsCarrier_;
    Geometry geometry_;
    std::int64_t length_ = 0;
    std::vector<Run> runs_;
};

}  // namespace

Geometry Geometry::of(int layer, int samplesPerFrame) {
    if (layer == 3) {
        Geometry geometry;
        geometry.frame = samplesPerFrame;
        return geometry;
    }
    return {1152, 480, 481, 481, false};
}

std::int64_t Layout::keptFrames() const {
    std::int64_t kept = 0;
    for (const Piece& piece : pieces) {
        if (piece.kind == Piece::Kind::Kept) kept += piece.count;
    }
    return kept;
}

Layout layOut(const FrameIndex& index, const std::vector<Segment>& plan,
              const std::function<bool(std::int64_t)>& needsCarrier) {
    return Planner(index, plan, needsCarrier).best();
}

Layout layOutEncoded(const Geometry& geometry, std::int64_t length) {
    Layout layout;
    layout.length = length;
    layout.statesGaps = geometry.infoFrame;
    layout.start = geometry.infoFrame ? geometry.codecDelay : 0;
    // Decoders do not recognise a stream by a single frame.
    layout.frames = std::max<std::int64_t>(geometry.infoFrame ? 2 : 1,
                                           ceilDivide(length + layout.start, geometry.frame));
    layout.pieces.push_back({Piece::Kind::Encoded, 0, layout.frames, 0});
    return layout;
}

}  // namespace audio::mpeg
