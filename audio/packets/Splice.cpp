// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/packets/Splice.h"

#include <algorithm>

#include "audio/packets/AacWindows.h"
#include "audio/packets/CannotJoin.h"
#include "audio/packets/SourcePackets.h"

namespace audio::packets {
namespace {

using Bytes = std::span<const std::uint8_t>;

class Splicer {
  public:
    Splicer(const SpliceJob& job, PacketSink& sink)
        : job_(job), grid_(job.stream.grid), source_(job.source), sink_(sink) {}

    std::vector<Piece> run() {
        const std::vector<Piece>& pieces = job_.layout.pieces;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            next_ = i + 1 < pieces.size() ? &pieces[i + 1] : nullptr;
            if (pieces[i].kept())
                keep(pieces[i]);
            else
                encode(pieces[i]);
            before_ = &pieces[i];
        }
        sink_.finish();
        return std::move(written_);
    }

  private:
    /// Whether, behind the packet before this one, encoded or the source's, either stream may go
    /// on. Opus packets stand beside any others.
    bool fit(Bytes encodedBefore, const Piece& kept, std::int64_t number) {
        if (job_.stream.parameters->codec_id != AV_CODEC_ID_AAC) return true;
        return !encodedBefore.empty() &&
               windowsEndAlike(encodedBefore, sourcePacket(kept, number - 1));
    }

    Bytes sourcePacket(const Piece& kept, std::int64_t number) {
        return source_.at(number - kept.first + kept.source);
    }

    void keep(const Piece& piece) {
        const std::int64_t end = next_ ? piece.end - grid_.search : piece.end;
        while (number_ < end) putKept(piece);
    }

    void encode(const Piece& piece) {
        bool joined = before_ == nullptr;
        std::vector<std::uint8_t> last;
        // One packet ahead, for what the windows of the first one are joined to.
        const std::int64_t first = joined ? number_ : number_ - 1;
        std::int64_t coming = first;
        const auto take = [&](Bytes packet) {
            if (coming++ < number_) {
                last.assign(packet.begin(), packet.end());
                return true;
            }
            joined = joined || fit(last, *before_, number_);
            if (joined && next_ && number_ >= piece.end && fit(last, *next_, number_)) return false;
            if (!joined && number_ >= piece.end) refuse();
            if (next_ && number_ >= piece.end + grid_.search) refuse();
            last.assign(packet.begin(), packet.end());
            if (!joined)
                putKept(*before_);
            else
                put(packet, {number_, number_ + 1, -1});
            return number_ < job_.layout.packets;
        };
        encodeFrom(first, grid_, job_.source, job_.format, job_.sound, take);
        if (!joined) refuse();
    }

    [[noreturn]] static void refuse() {
        throw CannotJoin("Its packets do not fit together with new ones.");
    }

    void putKept(const Piece& piece) {
        const std::int64_t source = number_ - piece.first + piece.source;
        put(source_.at(source), {number_, number_ + 1, source});
    }

    void put(Bytes packet, const Piece& piece) {
        sink_.put(packet);
        Piece* last = written_.empty() ? nullptr : &written_.back();
        const bool goesOn =
            last && last->kept() == piece.kept() &&
            (!piece.kept() || piece.source - last->source == piece.first - last->first);
        if (goesOn)
            ++last->end;
        else
            written_.push_back(piece);
        ++number_;
        job_.advance(1);
    }

    const SpliceJob& job_;
    const Grid& grid_;
    SourcePackets source_;
    PacketSink& sink_;
    std::vector<Piece> written_;
    std::int64_t number_ = 0;  ///< of the packet to be written next
    const Piece* before_ = nullptr;
    const Piece* next_ = nullptr;
};

}  // namespace

std::vector<Piece> splice(const SpliceJob& job, PacketSink& sink) {
    return Splicer(job, sink).run();
}

}  // namespace audio::packets
