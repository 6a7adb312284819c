// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "audio/vorbis/StreamHeaders.h"

namespace audio::vorbis {

/// Decodes packets that follow one another, for comparing them. Its sound lies in the order of
/// Vorbis' channels. One thread.
class PacketDecoder {
  public:
    explicit PacketDecoder(const StreamHeaders& headers);

    /// Forgets the packets before. The next one completes no sound.
    void reset();
    /// Appends the frames that this packet completes, those between the last packet's centre and
    /// its own, to each plane. Throws CannotSplice where it cannot be decoded.
    void decode(std::span<const std::uint8_t> packet, std::vector<std::vector<float>>& planes);

  private:
    struct Block {
        explicit Block(vorbis_dsp_state& dsp) { vorbis_block_init(&dsp, &block); }
        ~Block() { vorbis_block_clear(&block); }
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;
        vorbis_block block{};
    };
    StreamInfo stream_;
    Block block_;
};

}  // namespace audio::vorbis
