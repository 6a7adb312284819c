// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "audio/Contents.h"
#include "audio/Format.h"

namespace audio::read {

/// Reads the sound of one local file as 32-bit float frames, from any frame on, without encoder
/// delay and padding. Opens local files only: never a URL, a playlist or a script, and never a
/// second file that the first one names. It does not resample, remap or write. One thread at a
/// time; different decoders are independent.
///
/// Integer PCM of up to 24 bits comes out without loss (value / 2^(bits-1)); of 32-bit integers and
/// doubles a float keeps 24 significant bits: copy those with readPcm() where every bit counts.
/// Layer II has no statement of encoder delay, so its sound is all that a decoder puts out, as with
/// other players: whole frames of 1152. WMA likewise: whole blocks.
class Decoder {
  public:
    /// Opens and probes. Throws platform::Error naming the file and the reason.
    explicit Decoder(const std::filesystem::path& file);
    ~Decoder();
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    const Format& format() const;
    const Contents& contents() const;

    /// The exact number of frames. May have to read the whole file's structure (never decode all of
    /// it where the structure tells), so ask only when it is needed; the answer is kept.
    /// Throws platform::Error where the file cannot be read.
    std::int64_t frames();

    /// The number of frames the file claims or its size suggests, at once; -1 where nothing tells.
    std::int64_t estimatedFrames() const;

    /// The next frames as interleaved floats, full scale ±1, up to `frames` of them.
    /// Returns how many were written; 0 only at the end of the sound. A damaged stretch inside the
    /// file comes out as silence of its length; throws platform::Error when nothing more can be
    /// read.
    std::size_t read(float* interleaved, std::size_t frames);

    /// Makes the next read() begin at exactly this frame, clamped to the sound.
    void seek(std::int64_t frame);

    /// The frame the next read() begins with.
    std::int64_t position() const;

    /// Whether readPcm() works: the sound is Codec::Pcm.
    bool hasPcm() const;

    /// The next frames as the bytes that lie in the file (little-endian, format().sampleType,
    /// interleaved), up to `frames` of them; otherwise as read(), and sharing its position. Throws
    /// platform::Error where hasPcm() is false.
    std::size_t readPcm(std::byte* bytes, std::size_t frames);

    /// Whether any stretch read so far was damaged and came out as silence.
    bool damaged() const;

    class Source;  ///< one way of reading; private to this folder

  private:
    std::unique_ptr<Source> source_;
};

}  // namespace audio::read
