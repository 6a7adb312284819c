// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "audio/read/PacketReader.h"

namespace audio::packets {

/// The packets of a file by their numbers. Forwards it reads on, a packet back costs nothing,
/// farther back it begins anew. One thread at a time; throws platform::Error.
class SourcePackets {
  public:
    explicit SourcePackets(const std::filesystem::path& file);

    /// The packet, valid until the next call but one. Throws where the file has no such packet.
    std::span<const std::uint8_t> at(std::int64_t number);

  private:
    std::filesystem::path file_;
    std::unique_ptr<read::PacketReader> reader_;
    read::SoundPacket packet_;
    std::vector<std::uint8_t> last_;
    std::vector<std::uint8_t> before_;
    std::int64_t number_ = -1;  ///< of last_
};

}  // namespace audio::packets
