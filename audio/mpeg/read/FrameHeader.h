// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace audio::mpeg {

enum class Version : std::uint8_t { Mpeg1, Mpeg2, Mpeg25 };
enum class ChannelMode : std::uint8_t { Stereo, Joint, Dual, Mono };

/// The four bytes that begin every MPEG audio frame (ISO/IEC 11172-3 2.4.1.3 and 13818-3, with the
/// usual 2.5 extension), taken apart. A plain value.
struct FrameHeader {
    std::uint32_t word = 0;  ///< the four bytes, first byte highest
    Version version = Version::Mpeg1;
    int layer = 3;       ///< 1, 2 or 3
    int bitRate = 0;     ///< bit/s; 0 means free format
    int sampleRate = 0;  ///< Hz
    bool padding = false;
    bool crc = false;  ///< two bytes of CRC-16 follow the header
    ChannelMode mode = ChannelMode::Stereo;
    int modeExtension = 0;  ///< joint stereo: bit 0 intensity, bit 1 mid/side

    /// Takes four bytes apart; nothing where they are not a header (no sync, or a reserved value).
    static std::optional<FrameHeader> parse(std::span<const std::uint8_t> bytes);

    bool freeFormat() const { return bitRate == 0; }
    bool lsf() const { return version != Version::Mpeg1; }
    int channels() const { return mode == ChannelMode::Mono ? 1 : 2; }

    /// Sample frames that one frame decodes to: 1152, 576 (Layer III of MPEG-2/2.5) or 384 (Layer
    /// I).
    int samples() const;
    /// Bytes of the whole frame, header and padding included; 0 in free format.
    int size() const;
    /// Layer III: bytes of the side information (9, 17 or 32); 0 in the other layers.
    int sideInfoSize() const;
    /// Bytes before the Layer III main data: header, CRC and side information.
    int overhead() const { return 4 + (crc ? 2 : 0) + sideInfoSize(); }

    /// Whether two frames can belong to one stream: same version, layer and rate, mono like mono,
    /// free format like free format. Bit-rate, padding, CRC and stereo mode may differ.
    bool sameStream(const FrameHeader& other) const;

    /// This header with another bit-rate index (1..14).
    FrameHeader withBitRateIndex(int index) const;
    int bitRateIndex() const { return static_cast<int>(word >> 12 & 15); }

    /// Bit-rate in bit/s of an index (1..14) for a version and layer.
    static int bitRateOf(Version version, int layer, int index);
};

/// Samples by which a decoder's output lies behind the sound, before any encoder delay is counted:
/// 529 in Layer III (MDCT and polyphase), 481 in Layer II, 481 in Layer I.
int decoderDelay(int layer);

}  // namespace audio::mpeg
