// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/Splice.h"

#include <algorithm>
#include <deque>
#include <optional>

#include "audio/ogg/PageWriter.h"
#include "audio/parallel/Budget.h"
#include "audio/parallel/OrderedTasks.h"
#include "audio/vorbis/PacketReader.h"
#include "audio/vorbis/SetupMatch.h"
#include "audio/vorbis/SilentPackets.h"
#include "audio/vorbis/StretchEncoder.h"

namespace audio::vorbis {
namespace {

// Of one task. The lead of the next one is encoded twice, so it must not be too short.
constexpr std::int64_t stretchFrames = 1 << 17;

PacketBytes plainComment() {
    vorbis_comment comment{};
    vorbis_comment_init(&comment);
    ogg_packet packet{};
    vorbis_commentheader_out(&comment, &packet);
    PacketBytes bytes(packet.packet, packet.packet + packet.bytes);
    ogg_packet_clear(&packet);
    vorbis_comment_clear(&comment);
    return bytes;
}

/// Numbers the packets' frames and puts them into pages.
class StreamOut {
  public:
    StreamOut(const PacketIndex& index, const Layout& layout, ogg::PageWriter::Take sink)
        : index_(index), layout_(layout), pages_(index.serial(), std::move(sink)) {}

    void headers(const PacketBytes& comment) {
        pages_.put(index_.headers().identification, 0);
        pages_.flush();  // the first page holds nothing else
        pages_.put(comment, 0);
        pages_.put(index_.headers().setup, 0);
        pages_.flush();  // the sound begins on a page of its own
    }

    void packet(std::span<const std::uint8_t> bytes) {
        if (next_ > 0)
            centre_ += (index_.blockSize(layout_.isLong(next_ - 1)) +
                        index_.blockSize(layout_.isLong(next_))) /
                       4;
        else
            centre_ = layout_.firstCentre;
        const bool last = ++next_ == layout_.size();
        // The last page states the exact length.
        const std::int64_t frame = last ? layout_.frames : centre_;
        const std::int64_t granule = frame + layout_.granuleOffset;
        pages_.put(bytes, granule, last);
        // The first page tells every reader where the count begins, so it must not be the last
        // one too; and none may state a position below 0.
        const bool tells = layout_.firstCentre < 0 ? granule > 0 : granule >= 0;
        if (last || (!told_ && tells)) pages_.flush();
        told_ = told_ || tells;
    }

    bool complete() const { return next_ == layout_.size(); }

  private:
    const PacketIndex& index_;
    const Layout& layout_;
    ogg::PageWriter pages_;
    std::int64_t next_ = 0;
    std::int64_t centre_ = 0;
    bool told_ = false;
};

/// Writes the packets of a layout: kept ones copied, the others encoded on all cores.
class Splicer {
  public:
    Splicer(const std::filesystem::path& file, const PacketIndex& index, const Layout& layout,
            const SoundReader& sound, const std::optional<EncoderSetup>& setup,
            const SpliceOptions& options, StreamOut& out)
        : index_(index),
          layout_(layout),
          options_(options),
          out_(out),
          reader_(file, index),
          silent_(index),
          sound_(sound, layout.frames, index.channels(), layout.silenceBefore),
          encoder_(setup.value_or(EncoderSetup{})),
          tasks_(parallel::threadCount(options.threads), 1) {}

    void run() {
        std::int64_t centre = layout_.firstCentre;
        Piece piece{0, 0, centre, layout_.origin(0)};
        for (std::int64_t block = 0; block < layout_.size(); ++block) {
            if (block > 0) centre += step(block);
            const bool full = layout_.coded(block) && centre - piece.centre >= stretchFrames;
            if (layout_.origin(block) != piece.origin || full) {
                begin(piece);
                piece = {block, 0, centre, layout_.origin(block)};
            }
            ++piece.count;
        }
        begin(piece);
        while (!pieces_.empty()) writeFirst();
    }

  private:
    /// Neighbouring blocks that are treated alike.
    struct Piece {
        std::int64_t first = 0;
        std::int64_t count = 0;
        std::int64_t centre = 0;  ///< of the first
        Origin origin = Origin::Kept;
        bool coded() const { return origin == Origin::Coded || origin == Origin::CodedFree; }
    };

    std::int64_t step(std::int64_t block) const {
        return (index_.blockSize(layout_.isLong(block - 1)) +
                index_.blockSize(layout_.isLong(block))) /
               4;
    }

    // Pieces are copied when their turn comes, while those behind them are being encoded.
    void begin(const Piece& piece) {
        if (piece.coded()) {
            while (tasks_.full()) writeFirst();
            tasks_.begin([this, stretch = stretchOf(piece)] { return encoder_.encode(stretch); });
        }
        pieces_.push_back(piece);
    }

    Stretch stretchOf(const Piece& piece) {
        Stretch stretch;
        const std::int64_t lead = std::min(leadBlocks, piece.first);
        const std::int64_t first = piece.first - lead;
        std::int64_t centre = piece.centre;
        for (std::int64_t block = piece.first; block > first; --block) centre -= step(block);
        for (std::int64_t block = first; block < piece.first + piece.count; ++block) {
            if (block > first) centre += step(block);
            stretch.blocks.push_back({centre, layout_.isLong(block)});
        }
        stretch.lead = static_cast<std::size_t>(lead);
        stretch.longBefore = layout_.isLong(first - 1);
        stretch.longBehind = layout_.isLong(piece.first + piece.count);
        stretch.richness = piece.origin == Origin::Coded ? Richness::Rich : Richness::Plain;
        const std::int64_t size = index_.blockSize(true);
        stretch.sound = sound_.stretch(stretch.blocks.front().centre - size / 2,
                                       centre + size / 2 + lookAhead * size);
        return stretch;
    }

    void writeFirst() {
        const Piece piece = pieces_.front();
        pieces_.pop_front();
        if (piece.coded()) {
            for (const PacketBytes& packet : tasks_.take()) out_.packet(packet);
        } else if (piece.origin == Origin::Silent) {
            for (std::int64_t block = piece.first; block < piece.first + piece.count; ++block)
                out_.packet(silent_.packet(layout_.isLong(block - 1), layout_.isLong(block),
                                           layout_.isLong(block + 1)));
        } else {
            copy(piece);
        }
        report(piece.first + piece.count);
    }

    void copy(const Piece& piece) {
        for (std::int64_t done = 0; done < piece.count;) {
            while (!inKept(piece.first + done)) ++kept_;
            const Layout::Kept& kept = layout_.kept[kept_];
            const std::int64_t offset = piece.first + done - kept.first;
            const std::int64_t count = std::min(piece.count - done, kept.count - offset);
            for (std::int64_t i = 0; i < count; ++i) {
                out_.packet(reader_.packet(kept.sourceFirst + offset + i));
                if (i % 1'024 == 0) report(piece.first + done + i);
            }
            done += count;
        }
    }
    bool inKept(std::int64_t block) const {
        const Layout::Kept& kept = layout_.kept[kept_];
        return block >= kept.first && block < kept.first + kept.count;
    }

    void report(std::int64_t blocks) const {
        if (options_.progress)
            options_.progress(static_cast<double>(blocks) / static_cast<double>(layout_.size()));
    }

    const PacketIndex& index_;
    const Layout& layout_;
    const SpliceOptions& options_;
    StreamOut& out_;
    PacketReader reader_;
    SilentPackets silent_;
    SoundWindow sound_;
    std::size_t kept_ = 0;
    std::deque<Piece> pieces_;
    StretchEncoder encoder_;
    parallel::OrderedTasks<std::vector<PacketBytes>> tasks_;  // uses the encoder
};

/// The frames that new packets complete.
std::int64_t newFramesOf(const PacketIndex& index, const Layout& layout) {
    std::int64_t centre = layout.firstCentre;
    std::int64_t frames = 0;
    for (std::int64_t block = 1; block < layout.size(); ++block) {
        const std::int64_t from = centre;
        centre +=
            (index.blockSize(layout.isLong(block - 1)) + index.blockSize(layout.isLong(block))) / 4;
        if (layout.origin(block) == Origin::Kept) continue;
        const std::int64_t heard =
            std::min(centre, layout.frames) - std::max<std::int64_t>(from, 0);
        frames += std::max<std::int64_t>(0, heard);
    }
    return frames;
}

Layout layOutWith(const PacketIndex& index, const std::vector<Segment>& plan,
                  const std::optional<EncoderSetup>& setup) {
    if (setup) return layOut(index, plan, true);
    try {
        return layOut(index, plan, false);
    } catch (const CannotSplice&) {
        if (BlockForcer::works()) throw;
        throw CannotSplice("The Ogg Vorbis library is another than the one known here.");
    }
}

}  // namespace

SpliceOutcome splice(const std::filesystem::path& file, const PacketIndex& index,
                     const std::vector<Segment>& plan, const SoundReader& sound,
                     const std::function<void(std::span<const std::uint8_t>)>& sink,
                     const SpliceOptions& options) {
    const auto setup = matchingSetup(index.headers());
    const bool canEncode = setup && BlockForcer::works();
    SpliceOutcome outcome;
    outcome.layout = layOutWith(index, plan, canEncode ? setup : std::nullopt);
    const Layout& layout = outcome.layout;
    StreamOut out(index, layout, sink);
    out.headers(options.comment.empty() ? plainComment() : options.comment);
    Splicer(file, index, layout, sound, setup, options, out).run();
    if (!out.complete()) throw CannotSplice("The new stream has the wrong number of packets.");
    outcome.packets = layout.size();
    outcome.keptPackets = layout.count([](Origin origin) { return origin == Origin::Kept; });
    outcome.newFrames = newFramesOf(index, layout);
    return outcome;
}

}  // namespace audio::vorbis
