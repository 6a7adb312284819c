// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "audio/ffmpeg/Ffmpeg.h"
#include "audio/packets/Layout.h"

namespace audio::packets {

/// Writes the packets of a new stream into a file. One thread at a time; throws platform::Error.
class PacketSink {
  public:
    virtual ~PacketSink() = default;
    /// The next packet; the layout says how many there will be.
    virtual void put(std::span<const std::uint8_t> packet) = 0;
    /// Behind the last packet.
    virtual void finish() = 0;
};

using TakeBytes = std::function<void(std::span<const std::uint8_t>)>;

/// Opus in Ogg (RFC 7845): the source's head with the new stream's trimming, this comment packet,
/// and the packets. The bytes of the file come in order.
std::unique_ptr<PacketSink> openOpusFile(const AVCodecParameters& source, const Grid& grid,
                                         const Layout& layout,
                                         std::span<const std::uint8_t> comment, TakeBytes take);

/// AAC in MP4, in a file of its own; an edit list states the trimming at the start, the last
/// sample's duration that at the end. No metadata.
std::unique_ptr<PacketSink> openMp4File(const AVCodecParameters& source, const Grid& grid,
                                        const Layout& layout, const std::filesystem::path& file);

}  // namespace audio::packets
