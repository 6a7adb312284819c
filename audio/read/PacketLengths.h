// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "audio/ffmpeg/Ffmpeg.h"

namespace audio::read {

/// How many frames a decoder gives for each packet of a stream, read from the packets themselves
/// without decoding. Packets are shown in the order of the stream, because some count together with
/// the one before. One thread at a time.
class PacketLengths {
  public:
    explicit PacketLengths(const AVCodecParameters& parameters);
    ~PacketLengths();
    PacketLengths(PacketLengths&&) noexcept;
    PacketLengths& operator=(PacketLengths&&) noexcept;

    /// Whether packets of this codec state their frames.
    bool states() const;

    /// Frames that the next packet gives; nothing where the codec does not state them.
    std::optional<std::int64_t> of(std::span<const std::uint8_t> packet);

    /// What follows was not preceded by the packet seen last, as after a jump.
    void restart();

  private:
    struct Vorbis;

    std::int64_t ofVorbis(std::span<const std::uint8_t> packet);
    std::int64_t ofWma(std::span<const std::uint8_t> packet, bool first) const;

    AVCodecID codec_;
    int channels_ = 0;
    int sampleBits_ = 0;  ///< of codecs that store each sample in as many bits; 0 for others
    int blockAlign_ = 0;
    int sampleRate_ = 0;
    bool reservoir_ = false;  ///< WMA: its frames span packets
    std::int64_t block_ = 0;  ///< WMA and ALAC: frames of one of theirs
    bool first_ = true;
    std::unique_ptr<Vorbis> vorbis_;
};

/// Whether each packet of a codec gives as many frames as the first, which has to be decoded to
/// know how many (AAC: 1024 or 960, twice that with spectral band replication).
bool hasEqualPackets(AVCodecID codec);

/// Frames in one frame of WMA 1 or 2; 0 for other codecs. Its decoder gives one more at the end.
std::int64_t wmaBlock(const AVCodecParameters& parameters);

/// Frames that a decoder gives before the sound, where the codec says so: two blocks of WMA, the
/// pre-skip of Opus (RFC 7845, section 5.1).
std::int64_t codecDelay(const AVCodecParameters& parameters);

// The codecs' own words. Nothing for what is no packet of theirs.
/// RFC 6716, section 3.1; frames at 48 kHz.
std::optional<std::int64_t> opusFrames(std::span<const std::uint8_t> packet);
/// What the head of a FLAC frame says (RFC 9639, section 9.1).
struct FlacHead {
    std::int64_t frames = 0;
    std::int64_t number = 0;  ///< of the frame, or of its first sample
    bool numbersSamples = false;
};
std::optional<FlacHead> flacHead(std::span<const std::uint8_t> frame);
/// ALAC: frames in a packet, of which one that is full states none.
std::optional<std::int64_t> alacFrames(std::span<const std::uint8_t> packet, std::int64_t full);

}  // namespace audio::read
