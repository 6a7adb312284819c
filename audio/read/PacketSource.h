// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "audio/ffmpeg/Input.h"
#include "audio/ffmpeg/StreamDecoder.h"
#include "audio/read/PacketReader.h"
#include "audio/read/PacketTable.h"
#include "audio/read/Source.h"

namespace audio::read {

/// Reads all that comes in packets. The place of a packet in the sound is the sum of what came out
/// of those before it; a container's time stamps say nothing about it. Where packets state how
/// many frames they hold, and the first of them were seen to be right, the file is counted and
/// jumped in without decoding; else by decoding all that lies before.
class PacketSource : public Decoder::Source {
  public:
    /// Throws platform::Error, naming the file, where there is no decoder.
    explicit PacketSource(ffmpeg::Input input);

    std::int64_t estimatedFrames() const override { return frames_.value_or(estimate_); }
    std::int64_t frames() override;
    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;
    std::int64_t position() const override { return position_; }

  private:
    std::size_t channels() const { return static_cast<std::size_t>(format_.channels); }
    ffmpeg::StreamDecoder openDecoder() const;
    std::unique_ptr<PacketReader> openReader() const;
    PacketPlace firstPlace() const;

    bool extendRun();
    bool step();
    void place(std::size_t runSize, std::int64_t frames);
    std::int64_t framesGiven(const ffmpeg::StreamDecoder::Result& result);
    std::int64_t runEnd() const;
    void startRun(std::int64_t frame);

    bool statesLengths();
    bool checkLengths();
    std::int64_t statedBy(const SoundPacket& packet) const;
    void complete();
    void scan();
    void decodeToEnd();

    void jumpBefore(std::int64_t frame);
    void begin(const PacketPlace& place);
    bool findPacket(const PacketTable::Landmark& landmark);
    bool countTo(const PacketTable::Landmark& landmark);
    void restart();

    std::filesystem::path file_;
    FilePart part_;
    ffmpeg::ParametersPtr parameters_;
    AVRational timeBase_{1, 1};
    bool trims_ = false;  ///< packets are trimmed here; else by the decoder

    std::unique_ptr<PacketReader> reader_;
    std::optional<ffmpeg::StreamDecoder> decoder_;
    SoundPacket packet_;
    bool packetRead_ = false;  ///< the packet was read, not decoded
    bool drained_ = false;     ///< the decoder has given its last

    PacketTable table_;
    PacketPlace place_;                ///< of the packet that is decoded next
    std::optional<PacketPlace> goal_;  ///< where what comes out is sound again
    std::optional<bool> lengthsHold_;  ///< packets state what they give
    std::int64_t equal_ = 0;           ///< frames of each packet of such codecs
    std::int64_t usual_ = 0;           ///< frames that the last good packet gave

    std::vector<float> run_;     ///< decoded frames that were not all read yet
    std::int64_t runStart_ = 0;  ///< the frame the run begins with
    std::int64_t position_ = 0;
    std::int64_t estimate_ = -1;
    std::optional<std::int64_t> frames_;
};

}  // namespace audio::read
