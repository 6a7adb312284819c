// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/Format.h"
#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// How a stretch of MPEG sound is encoded. A plain value.
struct EncoderSettings {
    int layer = 3;           ///< 2 or 3
    int sampleRate = 44100;  ///< one that the layer has
    ChannelMode mode = ChannelMode::Joint;
    bool crc = false;  ///< Layer III only
    enum class Rate { Constant, Average, Quality };
    Rate rate = Rate::Constant;  ///< Layer II: always constant
    int bitRate = 128000;        ///< Constant (one that the version has) and Average, bit/s
    double quality = 4;          ///< Quality: LAME's V, 0 best to 9.999

    int channels() const { return mode == ChannelMode::Mono ? 1 : 2; }
    Version version() const;
    int samplesPerFrame() const { return layer == 3 && version() != Version::Mpeg1 ? 576 : 1152; }
    /// Settings for frames a little smaller, the smaller the more `steps` (1 …). Layer III.
    EncoderSettings cheaper(int steps) const;
};

/// The MP3 format nearest to what is asked: a rate that MP3 has (MPEG-1, 2 or 2.5), one or two
/// channels, and a bit-rate legal for that rate; constant bit-rate.
Format nearestMp3(int sampleRate, int kbps, int channels);

}  // namespace audio::mpeg
