// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "audio/pcm/SampleType.h"

namespace audio {

enum class Container { Wav, Mpeg, Ogg, Asf, Other };
enum class Codec { Pcm, Mp3, Mp2, Vorbis, Wma, Other };

/// What a sound file holds, or shall hold. A plain value.
///
/// Codec::Wma is versions 1 and 2 (codecName "wmav1", "wmav2"), which can be written; Pro, Lossless
/// and Voice are Codec::Other. Codec::Pcm is what lies in a WAV file uncompressed and
/// little-endian; the PCM of other containers is Codec::Other.
struct Format {
    Container container = Container::Other;
    Codec codec = Codec::Other;
    std::string containerName;      ///< FFmpeg's name of the demuxer ("flac", "mov,mp4,m4a,...")
    std::string codecName;          ///< FFmpeg's name of the codec, for sentences ("wmapro")
    int sampleRate = 0;             ///< Hz
    int channels = 0;               ///< interleaved in the order of the file
    std::uint64_t channelMask = 0;  ///< speakers, as WAVE's dwChannelMask; 0 = unstated
    pcm::SampleType sampleType =
        pcm::SampleType::Lossy;  ///< F32 and F64 are PCM of a WAV file only
    int bitsPerSample = 0;       ///< of a lossless codec, without padding bits; 0 for a lossy one
    std::int64_t bitRate = 0;    ///< bit/s, nominal where the file states one, else the average
    bool variableBitRate = false;
    double quality = -1;  ///< MP3 with a variable bit-rate: LAME's V, 0 (best) to 9.999; -1 unknown
};

}  // namespace audio
