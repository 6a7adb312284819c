// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace audio::codec {

enum class Container { Wav, Mpeg, Ogg, Asf, Other };
enum class Codec { Pcm, Mp3, Mp2, Vorbis, Wma, Other };
enum class SampleType { U8, S16, S24, S32, F32, F64, Lossy };

/// What a sound file holds. A plain value.
struct Format {
    Container container = Container::Other;
    Codec codec = Codec::Other;
    std::string codecName;  ///< FFmpeg's name of the codec, for sentences ("wmapro")
    int sampleRate = 0;     ///< Hz
    int channels = 0;       ///< interleaved in the order of the file
    SampleType sampleType = SampleType::Lossy;
    std::int64_t bitRate = 0;  ///< bit/s, nominal where the file states one, else the average
    bool variableBitRate = false;
};

}  // namespace audio::codec
