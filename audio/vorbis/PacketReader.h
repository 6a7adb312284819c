// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <ogg/ogg.h>
#include <span>

#include "audio/ogg/PageReader.h"
#include "audio/vorbis/PacketIndex.h"

namespace audio::vorbis {

/// The audio packets of an indexed file as they are, cheapest one after the other. One thread.
class PacketReader {
  public:
    /// The index must outlive the reader. Throws platform::Error where the file cannot be opened.
    PacketReader(const std::filesystem::path& file, const PacketIndex& index);
    ~PacketReader();
    PacketReader(const PacketReader&) = delete;
    PacketReader& operator=(const PacketReader&) = delete;

    /// Valid until the next call. Throws platform::Error where the file no longer holds it.
    std::span<const std::uint8_t> packet(std::int64_t number);

  private:
    std::span<const std::uint8_t> nextAudio();

    const PacketIndex& index_;
    ogg::PageReader reader_;
    ogg_stream_state stream_{};
    std::int64_t next_ = -1;
};

}  // namespace audio::vorbis
