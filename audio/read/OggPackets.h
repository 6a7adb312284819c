// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <ogg/ogg.h>
#include <vector>

#include "audio/ogg/PageReader.h"
#include "audio/read/PacketLengths.h"
#include "audio/read/PacketReader.h"

namespace audio::read {

/// Reads the packets of Vorbis, Opus and FLAC in Ogg page by page (RFC 3533). Pages that are
/// missing by their numbers, or whose checksum is wrong, are the evidence that sound is lost; how
/// much, the granule positions around them say. Nothing else believes a granule position but the
/// two ends of the stream.
class OggPackets : public PacketReader {
  public:
    explicit OggPackets(const ffmpeg::Input& input);
    ~OggPackets() override;

    static bool serves(const ffmpeg::Input& input);

    bool read(SoundPacket& packet) override;
    std::optional<PacketMark> mark(const SoundPacket& packet) const override;
    bool seek(const PacketMark& mark) override;
    void rewind() override;

  private:
    struct Queued {
        std::vector<std::uint8_t> bytes;
        std::int64_t page = 0;    ///< where the page lies on which it begins
        bool beginsPage = false;  ///< the first to begin there
        std::int64_t before = 0;  ///< the granule position it begins at
        std::optional<std::int64_t> frames;
        Trim trim;
        std::int64_t lost = 0;
        bool damaged = false;
    };

    void restartAt(std::int64_t offset);
    ogg_page* nextPage();
    bool belongs(ogg_page& page);
    bool isHeader(const ogg_packet& packet) const;
    void takePage(ogg_page& page);
    void queue(const ogg_packet& packet, std::int64_t page, bool begins);
    void settle(std::int64_t granule, bool last);
    void pad(std::int64_t padding);
    void release();

    AVCodecID codec_;
    FilePart part_;
    ogg::PageReader pages_;
    PacketLengths lengths_;

    ogg_stream_state stream_{};
    std::optional<int> serial_;
    std::int64_t partAt_ =
        -1;                   ///< where the page of an unfinished packet begins; -1: there is none
    bool partFirst_ = false;  ///< the unfinished packet is the first that begins on its page

    std::deque<Queued> ready_;             ///< to be read
    std::deque<Queued> waiting_;           ///< until a granule position tells of their place
    std::optional<std::int64_t> granule_;  ///< of the last page that had one
    bool fromStart_ = true;
    bool broken_ = false;  ///< pages are missing before what is queued next
    PacketMark last_;
    bool lastMarked_ = false;
};

}  // namespace audio::read
