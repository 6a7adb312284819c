// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "audio/Format.h"

namespace audio::write {

/// What the format alone does not say about the file to write.
struct EncoderOptions {
    /// How many frames will be written, -1 where that is not known. A WAV file becomes RF64 when
    /// they need more than 4 GB; where the number is unknown it reserves room for that (a JUNK
    /// chunk of 28 bytes), otherwise it has nothing that was not asked for.
    std::int64_t expectedFrames = -1;

    /// WAV: a WAV file whose fmt chunk is repeated byte for byte where it describes the same
    /// format. Empty: none.
    std::filesystem::path waveModel;
    /// WAV: whether all chunks of waveModel but fmt, data, fact, ds64 are copied too, byte for byte
    /// and on the same side of the data chunk. The file must stay as it is until finish().
    bool copyWaveChunks = true;

    /// Ogg Vorbis: the whole comment header packet, written as it stands. Empty: one with only a
    /// vendor text.
    std::vector<std::uint8_t> vorbisComment;

    /// How many threads may encode where the format lets several; 0: one for each core. The bytes
    /// do not depend on it.
    int threads = 0;
};

/// Writes one sound file: the sound, its format, and no metadata but what the options hand over.
/// It writes straight into the file it is given (a caller's temporary), which it creates or
/// empties, and never renames, syncs or removes anything. It does not resample, remap or dither.
/// One thread at a time.
///
/// MPEG audio is not among its formats: audio/mpeg/splice writes that.
///
/// Length is exact: an independent decoder finds storedFrames() frames, sample k written at place
/// k.
/// - WAV, Ogg Vorbis, FLAC and the like: exactly what was written.
/// - WMA and raw AAC know whole blocks only, so the last is filled up with silence. Both codecs
///   delay; the encoder takes that out.
class Encoder {
  public:
    /// Creates the file. Throws platform::Error naming the file and the reason, also where no
    /// encoder exists for the format (WMA Pro ...) or it cannot have that rate or channel count.
    Encoder(const std::filesystem::path& file, const Format& format,
            const EncoderOptions& options = {});
    /// Without finish() an unfinished file stays behind, for the caller to remove.
    ~Encoder();
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    /// Appends interleaved frames, full scale ±1. Integer formats get the nearest value, limited to
    /// full scale, without dither. Throws platform::Error (disk full ...); the encoder is of no use
    /// afterwards.
    void write(const float* interleaved, std::size_t frames);

    /// Codec::Pcm only: appends frames as the bytes that shall lie in the file (little-endian,
    /// format.sampleType, interleaved). May alternate with write().
    void writePcm(const std::byte* bytes, std::size_t frames);

    /// Codec::Pcm only, where waveModel holds sound of this very format: appends frames of it as
    /// they lie there, copied inside the system. `copied` is told of the frames of every stretch
    /// (up to 16 MB); what it throws comes through.
    void copyPcm(std::int64_t firstFrame, std::int64_t frames,
                 const std::function<void(std::int64_t frames)>& copied);

    /// Ends the sound, completes headers and closes the file. Throws platform::Error.
    void finish();

    /// Whether the constructor would find an encoder for this codec in this container.
    static bool canEncode(const Format& format);

    /// How many frames the finished file holds when `frames` were written.
    static std::int64_t storedFrames(const Format& format, std::int64_t frames);

    class Sink;  ///< one way of writing; private to this folder

  private:
    std::unique_ptr<Sink> sink_;
};

}  // namespace audio::write
