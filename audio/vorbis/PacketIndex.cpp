// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/vorbis/PacketIndex.h"

#include <algorithm>
#include <array>
#include <optional>

#include "audio/ogg/PageReader.h"
#include "audio/vorbis/CannotSplice.h"

namespace audio::vorbis {

/// The one pass over the file that fills an index.
class PacketIndex::Scan {
  public:
    Scan(PacketIndex& index, const std::filesystem::path& file) : index_(index), reader_(file) {}
    ~Scan() {
        if (begun_) ogg_stream_clear(&stream_);
    }
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;

    void run() {
        while (ogg_page* page = reader_.next()) take(*page);
        finish();
    }

  private:
    void take(ogg_page& page) {
        if (!begun_) begin(page);
        if (ogg_page_serialno(&page) != index_.serial_)
            throw CannotSplice(sawSound() && ogg_page_bos(&page)
                                   ? "It is a chain of several sounds."
                                   : "It holds something else beside the sound.");
        ended_ = ogg_page_eos(&page) != 0;
        ogg_stream_pagein(&stream_, &page);
        const bool continued = ogg_page_continued(&page) != 0;
        noted_ = false;
        bool completed = false;
        ogg_packet packet{};
        for (bool first = true;; first = false) {
            const int got = ogg_stream_packetout(&stream_, &packet);
            if (got < 0) throw CannotSplice("Some of its packets are missing.");
            if (got == 0) break;
            const std::span<const std::uint8_t> bytes(packet.packet,
                                                      static_cast<std::size_t>(packet.bytes));
            const bool beganHere = !(first && continued);
            completed = packetFound(bytes, beganHere) || completed;
        }
        const std::int64_t granule = ogg_page_granulepos(&page);
        if (completed && granule >= 0) granuleFound(granule);
    }

    void begin(ogg_page& page) {
        index_.serial_ = ogg_page_serialno(&page);
        ogg_stream_init(&stream_, index_.serial_);
        begun_ = true;
    }

    bool sawSound() const { return info_.has_value() && index_.packets() > 0; }

    /// Whether it was sound.
    bool packetFound(std::span<const std::uint8_t> bytes, bool beganHere) {
        const std::array<PacketBytes*, 3> headers = {
            &index_.headers_.identification, &index_.headers_.comment, &index_.headers_.setup};
        if (headersFound_ < headers.size()) {
            headers[headersFound_++]->assign(bytes.begin(), bytes.end());
            if (headersFound_ == headers.size()) headersComplete();
            return false;
        }
        if (!isAudio(bytes)) return false;
        audioFound(info_->shapeOf(bytes), beganHere);
        return true;
    }

    void headersComplete() {
        info_.emplace(index_.headers_);
        index_.channels_ = info_->channels();
        index_.sampleRate_ = info_->sampleRate();
        index_.shortBlock_ = info_->shortBlock();
        index_.longBlock_ = info_->longBlock();
    }

    void audioFound(const StreamInfo::Shape& shape, bool beganHere) {
        const std::int64_t number = index_.packets();
        if (number == 0) {
            index_.longBeforeFirst_ = shape.previousIsLong;
        } else {
            checkFlags(shape);
            centre_ += (index_.blockSize(last_.isLong) + index_.blockSize(shape.isLong)) / 4;
        }
        (shape.isLong ? index_.longMode_ : index_.shortMode_) = shape.mode;
        if (beganHere && !noted_) {
            index_.pages_.push_back({reader_.offset(), number, centre_});
            noted_ = true;
        }
        index_.isLong_.push_back(shape.isLong);
        last_ = shape;
    }

    // Of blocks that all have one size the flags mean nothing.
    void checkFlags(const StreamInfo::Shape& shape) const {
        if (index_.shortBlock_ == index_.longBlock_) return;
        const bool agree = (!shape.isLong || shape.previousIsLong == last_.isLong) &&
                           (!last_.isLong || last_.nextIsLong == shape.isLong);
        if (!agree) throw CannotSplice("Its packets contradict one another.");
    }

    /// Of the first page, which if it is the last too cuts at the end (Vorbis I, section A.2).
    void granuleFound(std::int64_t granule) {
        if (!lastGranule_ && !ended_) index_.granuleOffset_ = granule - centre_;
        lastGranule_ = granule;
    }

    void finish() {
        if (index_.packets() == 0) throw CannotSplice("It holds no sound.");
        index_.longBehindLast_ = last_.nextIsLong;
        index_.lastCentre_ = centre_;
        const std::int64_t stated = lastGranule_.value_or(centre_) - index_.granuleOffset_;
        index_.end_ = std::min(stated, centre_);
        if (index_.frames() < 0) throw CannotSplice("Its pages contradict one another.");
    }

    PacketIndex& index_;
    ogg::PageReader reader_;
    ogg_stream_state stream_{};
    bool begun_ = false;
    bool ended_ = false;
    bool noted_ = false;  ///< the page has its entry
    std::size_t headersFound_ = 0;
    std::optional<StreamInfo> info_;
    StreamInfo::Shape last_;
    std::int64_t centre_ = 0;  ///< of the last packet
    std::optional<std::int64_t> lastGranule_;
};

PacketIndex::PacketIndex(const std::filesystem::path& file) {
    Scan(*this, file).run();
}

const PacketIndex::Page& PacketIndex::pageBefore(std::int64_t packet) const {
    const auto behind = std::upper_bound(
        pages_.begin(), pages_.end(), packet,
        [](std::int64_t wanted, const Page& page) { return wanted < page.packet; });
    return *std::prev(behind);
}

std::int64_t PacketIndex::centre(std::int64_t packet) const {
    const Page& page = pageBefore(packet);
    std::int64_t centre = page.centre;
    for (std::int64_t i = page.packet; i < packet; ++i)
        centre += (blockSize(isLong(i)) + blockSize(isLong(i + 1))) / 4;
    return centre;
}

}  // namespace audio::vorbis
