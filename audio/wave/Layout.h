// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "audio/pcm/SampleType.h"

namespace audio::wave {

constexpr int formatTagPcm = 1;
constexpr int formatTagFloat = 3;
constexpr int formatTagExtensible = 0xFFFE;

/// One chunk, as it lies in the file. Offsets count from the file's first byte.
struct Chunk {
    std::string id;           ///< four characters
    std::int64_t offset = 0;  ///< of the header: id and size
    std::int64_t body = 0;    ///< of the first byte behind the header
    std::int64_t size = 0;    ///< bytes of the body that are really there, without padding
    bool operator==(const Chunk&) const = default;
};

/// What a fmt chunk says.
struct SoundFormat {
    int tag = 0;  ///< WAVEFORMATEX's wFormatTag, that of the sub-format where it is extensible
    bool extensible = false;
    int channels = 0;
    int sampleRate = 0;
    int blockAlign = 0;             ///< bytes of one frame
    int bitsPerSample = 0;          ///< of the container
    int validBits = 0;              ///< bits that count, where stated; else bitsPerSample
    std::uint32_t channelMask = 0;  ///< 0 where unstated
    std::int64_t byteRate = 0;

    /// How the samples lie; nothing where they are not plain PCM.
    std::optional<pcm::SampleType> sampleType() const;
};

/// The chunks of a RIFF WAVE file (RF64 and BW64 too), found by walking the file and not by
/// believing its size fields. A plain value; the sound itself is not read.
///
/// Formats: Multimedia Programming Interface and Data Specifications 1.0 (RIFF), EBU Tech 3306
/// (RF64), ITU-R BS.2088 (BW64). What is tolerated: an odd chunk without its padding byte, chunks
/// behind the data or behind what the RIFF size says, a data size of 0 or 0xFFFFFFFF in a file that
/// was never finished, sizes that reach past the end of the file or that wrapped at 4 GB, bytes
/// behind the last chunk.
struct Layout {
    bool rf64 = false;           ///< RF64 or BW64
    std::string form;            ///< "RIFF", "RF64" or "BW64"
    std::vector<Chunk> chunks;   ///< all of them, in the order of the file
    std::vector<std::byte> fmt;  ///< the body of the fmt chunk
    SoundFormat format;
    std::size_t dataIndex = 0;  ///< which of the chunks is the sound
    std::int64_t trailing = 0;  ///< where bytes begin that belong to no chunk; fileSize where none
    std::int64_t fileSize = 0;

    const Chunk& data() const { return chunks[dataIndex]; }
    /// Whole frames in the data chunk.
    std::int64_t frames() const { return format.blockAlign ? data().size / format.blockAlign : 0; }
};

/// Whether the file's first bytes are those of a RIFF, RF64 or BW64 WAVE file. False where it
/// cannot be read. Any thread.
bool looksLikeWave(const std::filesystem::path& file);

/// Reads the layout. Throws platform::Error naming the file where it cannot be read, is no WAVE
/// file, or has no usable fmt or data chunk. Any thread.
Layout readLayout(const std::filesystem::path& file);

/// What the body of a fmt chunk says; nothing where it is too short. Any thread.
std::optional<SoundFormat> parseFormat(const std::vector<std::byte>& fmtBody);

/// The body of a fmt chunk for PCM or float: WAVEFORMATEXTENSIBLE where channels (> 2), bits (> 16
/// as integers) or a mask ask for it. blockAlign and byteRate are computed. Any thread.
std::vector<std::byte> buildFormat(const SoundFormat& format);

}  // namespace audio::wave
