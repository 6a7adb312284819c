// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/mpeg/splice/PieceWriter.h"

#include <algorithm>
#include <array>

namespace audio::mpeg {
namespace {

// How many frames a seam may move into the kept sound to find windows that fit.
constexpr std::int64_t seamSearch = 8;
// Of a kept piece, so many frames stay kept wherever its seams go.
constexpr std::int64_t keptAlways = 3;
// Kept frames at either end of a piece that are decoded again and compared.
constexpr std::int64_t checkedFrames = 4;

// Places where windows fit, the best first: the first one that lacks little reservoir, then by what
// they lack, which cheaper frames have to make up for.
class SeamChoice {
  public:
    explicit SeamChoice(int tolerance) : tolerance_(tolerance) {}

    void offer(std::int64_t seam, int lack) {
        offers_.push_back({std::max(lack, tolerance_), seam});
    }
    bool settled() const { return !offers_.empty() && offers_.back().lack <= tolerance_; }
    std::vector<std::int64_t> bestFirst(const char* whyNone) {
        if (offers_.empty()) throw CannotSplice(whyNone);
        std::stable_sort(offers_.begin(), offers_.end(),
                         [](const Offer& a, const Offer& b) { return a.lack < b.lack; });
        std::vector<std::int64_t> seams;
        for (const Offer& offer : offers_) seams.push_back(offer.seam);
        return seams;
    }

  private:
    struct Offer {
        int lack = 0;
        std::int64_t seam = 0;
    };
    int tolerance_;
    std::vector<Offer> offers_;
};

std::int64_t sourceFrameOf(const Piece& piece, std::int64_t frame) {
    return piece.sourceFrame + (frame - piece.first);
}

}  // namespace

PieceWriter::PieceWriter(const EncoderSettings& settings, const Layout& layout, OutputSound& sound,
                         StreamWriter& writer, SourceFrames* source, SeamCheck* check,
                         const FrameHeader& like, int threads, std::function<void(double)> progress)
    : settings_(settings),
      layout_(layout),
      check_(check),
      progress_(std::move(progress)),
      tick_([this] { report(); }) {
    joiner_ = makeJoiner(settings, writer, like, source, [this](std::int64_t frames) {
        done_ += frames;
        report();
    });
    encoder_ = std::make_unique<ChunkEncoder>(settings, planAll(), sound, threads, tick_);
}

PieceWriter::~PieceWriter() = default;

// An encoded piece reaches into the kept ones beside it, as far as its seams may move.
std::vector<ChunkPlan> PieceWriter::planAll() const {
    std::vector<ChunkPlan> all;
    const auto& pieces = layout_.pieces;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (pieces[i].kind != Piece::Kind::Encoded) continue;
        const bool before = i > 0 && pieces[i - 1].kind == Piece::Kind::Kept;
        const bool after = i + 1 < pieces.size();
        const std::int64_t first = pieces[i].first - (before ? seamSearch : 0);
        const std::int64_t end = pieces[i].end() + (after ? seamSearch : 0);
        const auto plans = planChunks(settings_, layout_.start, first, end);
        all.insert(all.end(), plans.begin(), plans.end());
    }
    return all;
}

void PieceWriter::run() {
    const auto& pieces = layout_.pieces;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const Piece* before = i > 0 ? &pieces[i - 1] : nullptr;
        const Piece* after = i + 1 < pieces.size() ? &pieces[i + 1] : nullptr;
        switch (pieces[i].kind) {
            case Piece::Kind::Silent:
                joiner_->addSilent(pieces[i].count,
                                   after ? joiner_->needOf(after->sourceFrame) : 0);
                break;
            case Piece::Kind::Kept:
                // It may already be open, from where the seam before it lies.
                if (open_ != &pieces[i]) {
                    open_ = &pieces[i];
                    openFirst_ = pieces[i].first;
                }
                if (!after) addKept(pieces[i].end());
                break;
            case Piece::Kind::Encoded:
                addRegion(before, after);
                break;
        }
    }
    joiner_->finish();
    progress_(1.0);
}

void PieceWriter::addRegion(const Piece* before, const Piece* after) {
    Chunk chunk = encoder_->next();
    std::int64_t first = chunk.plan.first;
    if (before && before->kind == Piece::Kind::Kept) {
        first = leftSeam(chunk, *before);
        addKept(first);
    }
    encoded_.push_back({first, 0});
    while (!chunk.plan.lastOfRegion) {
        Chunk next = encoder_->next();
        const std::int64_t seam = innerSeam(chunk, next);
        addFrames(chunk, first, seam, next.frame(seam).info.mainDataBegin);
        first = seam;
        chunk = std::move(next);
    }
    const std::int64_t end = after ? addLast(chunk, first, *after) : chunk.plan.end;
    if (!after) addFrames(chunk, first, end, 0);
    encoded_.back().count = end - encoded_.back().first;
}

// Adds a region's last frames, up to the best place from where kept ones can go on.
std::int64_t PieceWriter::addLast(const Chunk& chunk, std::int64_t first, const Piece& after) {
    const auto seams = rightSeams(chunk, after);
    for (const std::int64_t end : seams) {
        try {
            addFrames(chunk, first, end, joiner_->needOf(sourceFrameOf(after, end)));
        } catch (const DoesNotFit&) {
            if (end == seams.back()) throw;
            continue;
        }
        open_ = &after;
        openFirst_ = end;
        return end;
    }
    return first;
}

std::int64_t PieceWriter::leftSeam(const Chunk& chunk, const Piece& before) const {
    SeamChoice choice(tolerance(chunk));
    const std::int64_t lowest = std::max(chunk.plan.first, openFirst_ + keptAlways);
    for (std::int64_t seam = before.end(); seam >= lowest && !choice.settled(); --seam) {
        const std::int64_t last = sourceFrameOf(before, seam - 1);
        if (!joiner_->fitsAfterSource(last, chunk.frame(seam))) continue;
        choice.offer(seam, chunk.frame(seam).info.mainDataBegin - joiner_->roomAfter(last));
    }
    return choice.bestFirst("No place was found where new sound can begin.").front();
}

std::vector<std::int64_t> PieceWriter::rightSeams(const Chunk& chunk, const Piece& after) const {
    SeamChoice choice(tolerance(chunk));
    const std::int64_t highest = std::min(chunk.plan.end - 1, after.end() - keptAlways);
    const std::int64_t lowest = std::max(after.first, chunk.plan.first + 1);
    for (std::int64_t seam = lowest; seam <= highest; ++seam) {
        const std::int64_t next = sourceFrameOf(after, seam);
        if (!joiner_->fitsBeforeSource(chunk.frame(seam - 1), next)) continue;
        choice.offer(seam, joiner_->needOf(next) - chunk.frame(seam).info.mainDataBegin);
    }
    return choice.bestFirst("No place was found where new sound can end.");
}

std::int64_t PieceWriter::innerSeam(const Chunk& left, const Chunk& right) const {
    // Slots of any size lack nothing.
    const bool fixed = settings_.rate == EncoderSettings::Rate::Constant;
    SeamChoice choice(fixed ? 0 : longestReservoir(right.frames.front().header));
    for (std::int64_t seam = right.plan.first; seam < left.plan.end && !choice.settled(); ++seam) {
        if (!joiner_->fits(left.frame(seam - 1), right.frame(seam))) continue;
        choice.offer(seam,
                     right.frame(seam).info.mainDataBegin - left.frame(seam).info.mainDataBegin);
    }
    return choice.bestFirst("Two parts of the new sound cannot be joined.").front();
}

// How much reservoir may lack at a seam with kept sound before moving it is better: what a few
// slightly cheaper frames make up for.
int PieceWriter::tolerance(const Chunk& chunk) const {
    return chunk.frames.front().header.size() / 16;
}

void PieceWriter::addFrames(const Chunk& chunk, std::int64_t first, std::int64_t end,
                            int needBehind) {
    const auto from = chunk.frames.begin() + static_cast<long>(first - chunk.plan.first);
    const auto to = chunk.frames.begin() + static_cast<long>(end - chunk.plan.first);
    joiner_->addEncoded({from, to}, needBehind,
                        [&](std::size_t skip, std::size_t count, int steps) {
                            return encoder_->cheaper(chunk, first + static_cast<std::int64_t>(skip),
                                                     static_cast<std::int64_t>(count), steps);
                        });
    done_ += end - first;
    report();
}

// Writes the open kept piece up to a frame of the new stream.
void PieceWriter::addKept(std::int64_t end) {
    const std::int64_t count = end - openFirst_;
    const std::int64_t sourceFirst = sourceFrameOf(*open_, openFirst_);
    expectKept(openFirst_, count, sourceFirst);
    joiner_->addKept(sourceFirst, count);
    kept_ += count;
    open_ = nullptr;
}

// The first kept frames overlap with what stands before them; from then on nothing may differ.
void PieceWriter::expectKept(std::int64_t first, std::int64_t count, std::int64_t sourceFirst) {
    const std::int64_t overlap = settings_.samplesPerFrame() == 576 ? 3 : 2;
    const bool moved = first > 0 || sourceFirst > 0;
    const std::int64_t from = moved ? std::min(overlap, count) : 0;
    const std::int64_t ahead = std::min<std::int64_t>(checkedFrames, count - from);
    check_->expectKept(first + from, ahead, sourceFirst + from);
    const std::int64_t last = std::min<std::int64_t>(checkedFrames, count - from - ahead);
    check_->expectKept(first + count - last, last, sourceFirst + count - last);
}

void PieceWriter::report() {
    const auto all = static_cast<double>(std::max<std::int64_t>(1, layout_.frames));
    progress_(std::min(1.0, static_cast<double>(done_) / all));
}

FrameHeader plainHeader(const EncoderSettings& settings) {
    const std::uint32_t version = settings.version() == Version::Mpeg1   ? 3
                                  : settings.version() == Version::Mpeg2 ? 2
                                                                         : 0;
    const int base = settings.sampleRate * (version == 3 ? 1 : version == 2 ? 2 : 4);
    const std::uint32_t rate = base == 48000 ? 1 : base == 32000 ? 2 : 0;
    std::uint32_t index = 9;
    for (int i = 1; i <= 14; ++i) {
        if (FrameHeader::bitRateOf(settings.version(), settings.layer, i) == settings.bitRate) {
            index = static_cast<std::uint32_t>(i);
        }
    }
    // "Original" is set, as LAME sets it.
    const std::uint32_t word = 0xFFE00004U | version << 19 |
                               static_cast<std::uint32_t>(4 - settings.layer) << 17 |
                               (settings.crc ? 0U : 1U) << 16 | index << 12 | rate << 10 |
                               static_cast<std::uint32_t>(settings.mode) << 6;
    const std::array<std::uint8_t, 4> bytes = {
        static_cast<std::uint8_t>(word >> 24), static_cast<std::uint8_t>(word >> 16),
        static_cast<std::uint8_t>(word >> 8), static_cast<std::uint8_t>(word)};
    const auto header = FrameHeader::parse(bytes);
    if (!header || header->sampleRate != settings.sampleRate) {
        throw platform::Error("MPEG audio has no rate of " + std::to_string(settings.sampleRate) +
                              " Hz.");
    }
    return *header;
}

}  // namespace audio::mpeg
