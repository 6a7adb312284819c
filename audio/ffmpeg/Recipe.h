// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/Format.h"
#include "audio/ffmpeg/Ffmpeg.h"

namespace audio::ffmpeg {

/// How a container and codec are written through FFmpeg.
struct Recipe {
    const AVOutputFormat* muxer = nullptr;
    const AVCodec* encoder = nullptr;
    /// Frames of silence ahead of the sound, for an encoder that loses its first ones.
    int lead = 0;
    /// Frames at the start that are not encoded, where the container cannot state the codec's
    /// delay: what a decoder puts out then lies where it lay before.
    int cut = 0;
    /// The sound ends with a whole block of so many frames, filled up with silence; 0: anywhere.
    int block = 0;
    /// Whether what is written of a block depends on nothing but it and the sound of the block
    /// before, so that parts can be encoded side by side.
    bool independentBlocks = false;
    /// Frames of a packet, for an encoder that has several sizes (Opus); 0: its usual one.
    int packetFrames = 0;
    /// Whether the packets will stand among others of the same stream: nothing in them may depend
    /// on what a decoder did long before (AAC's noise substitution).
    bool joins = false;
    explicit operator bool() const { return muxer && encoder; }
};

/// The recipe for a format; empty where there is none.
Recipe recipeFor(const Format& format);

}  // namespace audio::ffmpeg
