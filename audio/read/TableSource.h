// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/read/StreamSource.h"

namespace audio::read {

/// Reads streams whose packets bear only rough times (ASF counts milliseconds, others less): the
/// place of a packet is the sum of what came out of those before it. The sums are kept in a table,
/// which reading fills as it goes; a jump finds its packet in the table again by time, place in the
/// file and size. The packets of WMA 1 and 2 state how many frames they hold, so that their table
/// is made at once, without decoding, and is then checked by the decoding.
class TableSource : public StreamSource {
  public:
    explicit TableSource(ffmpeg::Input input);

  private:
    struct Entry {
        std::int64_t pts;
        std::int64_t offset;
        int size;
        std::int64_t end;  ///< the frame after its last
        bool samePacket(const Entry& other) const {
            return pts == other.pts && offset == other.offset && size == other.size;
        }
    };

    bool extendRun() override;
    void jumpBefore(std::int64_t frame) override;
    std::int64_t countFrames() override;

    bool takeStep(const Step& step, std::size_t runSize);
    void record(const Entry& entry, std::int64_t got, bool damaged);
    Entry entryOf(const AVPacket& packet) const;
    bool build();
    std::int64_t framesIn(const AVPacket& packet, bool first) const;
    std::int64_t lostBefore(std::int64_t time, std::int64_t counted) const;
    bool confirmedByDecoding(const std::vector<Entry>& built) const;
    void completeByDecoding();
    bool jumpToPacket(std::size_t first);
    void restart();
    std::int64_t startOf(std::size_t number) const {
        return number > 0 ? table_[number - 1].end : 0;
    }

    std::vector<Entry> table_;
    bool complete_ = false;    ///< the table holds every packet
    std::size_t next_ = 0;     ///< the packet that is decoded next
    std::size_t settled_ = 0;  ///< what comes out of packets before this one is dropped
    std::int64_t usual_ = 0;   ///< frames that came out of the last good packet
    std::int64_t block_ = 0;   ///< WMA: frames of one of its frames; 0 for other codecs
    bool reservoir_ = false;   ///< WMA: its frames span packets
};

}  // namespace audio::read
