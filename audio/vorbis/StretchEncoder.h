// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "audio/vorbis/BlockForcer.h"
#include "audio/vorbis/SoundWindow.h"

namespace audio::vorbis {

/// Neighbouring blocks and the sound under them.
struct Stretch {
    struct Block {
        std::int64_t centre = 0;
        bool isLong = false;
    };
    std::vector<Block> blocks;
    bool longBefore = false;  ///< the neighbours of the first and the last one
    bool longBehind = false;
    std::size_t lead = 0;  ///< so many blocks at the front give no packets
    Richness richness = Richness::Rich;
    Planes sound;  ///< from half a long block before to `lookAhead` of one behind
};

/// So many blocks before those that are wanted are coded and thrown away: as many as the encoder
/// needs to forget where it began.
constexpr std::int64_t leadBlocks = 32;
/// So many long blocks of sound behind the last block tell whether something begins in it.
constexpr std::int64_t lookAhead = 4;

/// Codes stretches with the set-up of one stream. Several threads may do so at a time; what comes
/// out depends on the stretch alone.
class StretchEncoder {
  public:
    explicit StretchEncoder(const EncoderSetup& setup) : setup_(setup) {}

    /// A packet for each block behind the lead. Throws CannotSplice.
    std::vector<PacketBytes> encode(const Stretch& stretch);

  private:
    std::unique_ptr<BlockForcer> take();
    void giveBack(std::unique_ptr<BlockForcer> forcer);

    EncoderSetup setup_;
    std::mutex mutex_;                                // guards idle_
    std::vector<std::unique_ptr<BlockForcer>> idle_;  // setting one up takes a while
};

}  // namespace audio::vorbis
