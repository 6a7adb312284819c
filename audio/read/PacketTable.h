// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "audio/read/PacketReader.h"
#include "audio/read/Trimming.h"

namespace audio::read {

/// Where a packet's sound belongs: what came out of all packets before it, counted. A plain value.
struct PacketPlace {
    std::size_t number = 0;    ///< of the packet, from 0
    std::int64_t frame = 0;    ///< of the sound, with which it begins
    std::int64_t decoded = 0;  ///< frames that were decoded before it, sound or not
    Trimmer trimmer;

    /// Goes behind a packet that gives so many frames; what of them is sound. Not to be trimmed is
    /// what the decoder trims.
    Kept pass(const SoundPacket& packet, std::int64_t frames, bool trims);
};

/// The places of some packets of a stream, a third of a second of sound or more apart: few enough
/// for ten hours, near enough for a jump. It knows what has been passed so far, or all.
class PacketTable {
  public:
    struct Landmark {
        PacketMark mark;
        PacketPlace place;
    };

    /// Notes a packet, where it lies far enough behind the last one that was noted.
    void note(const std::optional<PacketMark>& mark, const PacketPlace& place);
    /// The stream's end: all of it is known.
    void finish(std::int64_t frames) { frames_ = frames; }

    std::optional<std::int64_t> frames() const { return frames_; }
    const std::vector<Landmark>& landmarks() const { return landmarks_; }
    /// How many landmarks begin at or before a frame.
    std::size_t countUpTo(std::int64_t frame) const;

  private:
    std::vector<Landmark> landmarks_;
    std::optional<std::int64_t> frames_;
};

}  // namespace audio::read
