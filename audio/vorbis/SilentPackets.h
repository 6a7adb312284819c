// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "audio/vorbis/PacketIndex.h"

namespace audio::vorbis {

/// Audio packets of a stream that decode to silence: no channel uses its floor (Vorbis I, section
/// 4.3.2), and all that follows is zeros. They need no encoder. A value.
class SilentPackets {
  public:
    explicit SilentPackets(const PacketIndex& index);

    /// Throws CannotSplice where the stream has no such block.
    const PacketBytes& packet(bool previousIsLong, bool isLong, bool nextIsLong) const;

  private:
    static std::size_t numberOf(bool previousIsLong, bool isLong, bool nextIsLong);

    std::array<PacketBytes, 8> packets_;
};

}  // namespace audio::vorbis
