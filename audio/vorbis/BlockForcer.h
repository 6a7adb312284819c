// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/vorbis/SetupMatch.h"

namespace audio::vorbis {

/// A block to be coded: its size, those of its neighbours, and what libvorbis' search for attacks
/// says of it.
struct ForcedBlock {
    bool previousIsLong = false;
    bool isLong = false;
    bool nextIsLong = false;
    bool attack = false;  ///< of a short block: something begins in it
};

/// How many bits a packet may take.
enum class Richness {
    Plain,  ///< as libvorbis' variable bit-rate has it
    Rich,   ///< more, for sound that was decoded and is coded again in its old blocks; of a managed
            ///< set-up, else plain
};

/// Codes blocks of given sizes with libvorbis, which otherwise decides on them itself. It sets
/// members of vorbis_block, most of them public; two are private to the library, so that works()
/// has to be asked first. One thread at a time.
///
/// What the library carries from block to block is the loudest peak so far, which decays: after
/// some 32 blocks the packets no longer depend on where the coding began.
class BlockForcer {
  public:
    /// Throws CannotSplice where the library has no such set-up.
    explicit BlockForcer(const EncoderSetup& setup);
    ~BlockForcer();
    BlockForcer(const BlockForcer&) = delete;
    BlockForcer& operator=(const BlockForcer&) = delete;

    /// Forgets the sound before.
    void reset();
    /// The packet of a block. `planes`: for each channel as many frames as the block is long, half
    /// of them before its centre, without a window; they are overwritten.
    PacketBytes code(const ForcedBlock& block, const std::vector<float*>& planes,
                     Richness richness);

    /// Frames of a short or a long block.
    std::int64_t blockSize(bool isLong) {
        return vorbis_info_blocksize(encoder_.dsp().vi, isLong ? 1 : 0);
    }

    /// Whether the library that runs keeps its private fields where this class looks for them, and
    /// a forced run repeats a free one byte for byte. Tried out when first asked; any thread.
    static bool works();

  private:
    bool freshBlock();

    LibraryEncoder encoder_;
    bool managed_;
    vorbis_block block_{};
    float loudest_;  ///< dB
};

/// Of a block that a free run of the library gave: whether it is a short one with an attack.
bool hasAttack(const vorbis_block& block);

}  // namespace audio::vorbis
