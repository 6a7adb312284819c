// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "audio/ffmpeg/Ffmpeg.h"
#include "audio/ffmpeg/Input.h"
#include "audio/read/Trimming.h"

namespace audio::read {

/// One packet of a stream of sound, and all that the container says of it.
struct SoundPacket {
    ffmpeg::PacketPtr data = ffmpeg::makePacket();
    std::optional<std::int64_t> stated;  ///< frames that it says it holds
    Trim trim;
    std::optional<Mp4End> mp4End;  ///< of the last one of an MP4 track
    std::int64_t lost = 0;         ///< frames that are known to be missing before it
    bool damaged = false;          ///< something is missing before it, however much

    std::span<const std::uint8_t> bytes() const {
        return {data->data, static_cast<std::size_t>(data->size)};
    }
};

/// What a packet is known by when it is met again. Time stamps only help to find it.
struct PacketMark {
    std::int64_t offset = -1;  ///< in the file; several packets may share one
    std::int64_t time = 0;     ///< for the reader that made it
    std::uint32_t size = 0;
    std::uint32_t sum = 0;  ///< of its bytes
    bool operator==(const PacketMark&) const = default;
};

/// Gives the packets of the stream of sound in a file, in order. One thread at a time.
class PacketReader {
  public:
    virtual ~PacketReader() = default;

    /// The next packet; false at the end of the stream, also where the file breaks off.
    virtual bool read(SoundPacket& packet) = 0;
    /// The mark of the packet that was just read; nothing where it could not be told from others.
    virtual std::optional<PacketMark> mark(const SoundPacket& packet) const = 0;
    /// Goes to where a marked packet is read next, or one not far before it. A hint: false, and
    /// any other place, are possible, and rewind() always works.
    virtual bool seek(const PacketMark& mark) = 0;
    /// Back to the first packet.
    virtual void rewind() = 0;
};

/// The way to read the packets of an opened file.
std::unique_ptr<PacketReader> openPackets(ffmpeg::Input input);

/// A sum over the first bytes of a packet, by which packets of one size are told apart.
std::uint32_t sumOf(std::span<const std::uint8_t> bytes);

}  // namespace audio::read
