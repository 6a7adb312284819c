// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/read/PacketLengths.h"
#include "audio/read/PacketReader.h"

namespace audio::read {

/// Reads packets with FFmpeg's demuxers. Loss is known for FLAC, whose frames have checksums and
/// numbers, and for WMA, whose packets in ASF have a fixed size; elsewhere what is missing is
/// missing, as for every other reader.
class ContainerPackets : public PacketReader {
  public:
    explicit ContainerPackets(ffmpeg::Input input);

    bool read(SoundPacket& packet) override;
    std::optional<PacketMark> mark(const SoundPacket& packet) const override;
    bool seek(const PacketMark& mark) override;
    void rewind() override;

  private:
    void describe(SoundPacket& packet);
    void findLoss(SoundPacket& packet, const PacketMark& mark) const;
    std::int64_t lostFlac(const SoundPacket& packet) const;
    std::int64_t lostWma(const PacketMark& mark) const;
    std::optional<Mp4End> mp4End(const AVPacket& packet);
    std::int64_t framesOf(std::int64_t duration) const;

    /// The packet before, by which loss is seen.
    struct Before {
        PacketMark mark;
        std::int64_t frames = 0;  ///< that it states
    };

    ffmpeg::Input input_;
    PacketLengths lengths_;
    ffmpeg::PacketPtr previous_;
    std::optional<Before> before_;
    bool mp4_ = false;
    std::int64_t movieGrain_ = 0;   ///< MP4: frames in one unit of the edit list, rounded up
    std::int64_t mediaFrames_ = 0;  ///< MP4: of all samples of the track; 0: not stated
    bool lastMarked_ = false;       ///< the packet read last can be told from its neighbours
};

}  // namespace audio::read
