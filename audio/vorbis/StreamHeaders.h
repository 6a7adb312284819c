// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>
#include <vorbis/codec.h>

namespace audio::vorbis {

using PacketBytes = std::vector<std::uint8_t>;

/// The three header packets of a stream (Vorbis I, section 4.2) as they lie there.
struct StreamHeaders {
    PacketBytes identification;
    PacketBytes comment;
    PacketBytes setup;
};

/// libvorbis' understanding of a stream's headers: enough to decode its packets. One thread at a
/// time.
class StreamInfo {
  public:
    /// Throws CannotSplice where the headers are none.
    explicit StreamInfo(const StreamHeaders& headers);
    ~StreamInfo();
    StreamInfo(const StreamInfo&) = delete;
    StreamInfo& operator=(const StreamInfo&) = delete;

    vorbis_info& info() { return info_; }
    vorbis_dsp_state& dsp() { return dsp_; }

    int channels() const { return info_.channels; }
    int sampleRate() const { return static_cast<int>(info_.rate); }
    /// bit/s; not above 0 where the stream states none.
    long nominalBitRate() const { return info_.bitrate_nominal; }
    /// Frames of a short and of a long block; they may be equal.
    std::int64_t shortBlock() { return vorbis_info_blocksize(&info_, 0); }
    std::int64_t longBlock() { return vorbis_info_blocksize(&info_, 1); }

    /// What the first bits of an audio packet state (section 4.3.1).
    struct Shape {
        bool isLong = false;
        bool previousIsLong = false;  ///< of a long one alone
        bool nextIsLong = false;
        int mode = 0;
    };
    /// Throws CannotSplice where the packet's mode does not exist.
    Shape shapeOf(std::span<const std::uint8_t> packet);

  private:
    vorbis_info info_{};
    vorbis_comment comment_{};
    vorbis_dsp_state dsp_{};
    vorbis_block block_{};
};

/// Whether an Ogg packet holds sound: it has bytes, and their first bit says so.
inline bool isAudio(std::span<const std::uint8_t> packet) {
    return !packet.empty() && (packet[0] & 1) == 0;
}

/// The packet as libvorbis takes it, which only reads it.
ogg_packet packetOf(std::span<const std::uint8_t> bytes);

}  // namespace audio::vorbis
