// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/mpeg/read/FrameHeader.h"
#include "audio/mpeg/read/FrameIndex.h"
#include "audio/mpeg/splice/Splice.h"

namespace audio::mpeg {

/// How sound and frames overlap in a layer; all in samples.
struct Geometry {
    std::int64_t frame = 1152;        ///< samples per frame
    std::int64_t tail = 1056;         ///< frame F changes raw [frame·F, frame·(F+1) + tail)
    std::int64_t decoderDelay = 529;  ///< what decoders drop beside the stated encoder delay
    std::int64_t codecDelay = 1105;   ///< the first sample encoded comes out at this raw index
    bool infoFrame = true;            ///< whether a stream can state delay and padding

    static Geometry of(int layer, int samplesPerFrame);
};

/// A run of frames of the new stream.
struct Piece {
    enum class Kind {
        Silent,  ///< carriers without sound, before kept frames
        Kept,    ///< source frames
        Encoded
    };
    Kind kind = Kind::Encoded;
    std::int64_t first = 0;  ///< frame of the new stream
    std::int64_t count = 0;
    std::int64_t sourceFrame = 0;  ///< Kept: the first one
    std::int64_t end() const { return first + count; }
};

/// Where the new sound lies on the frame grid, and which frames can be kept.
struct Layout {
    std::int64_t start = 0;   ///< raw index of gapless sample 0
    std::int64_t length = 0;  ///< gapless samples
    std::int64_t frames = 0;
    bool statesGaps = false;  ///< the stream has to state delay and padding
    std::vector<Piece> pieces;

    std::int64_t delay(const Geometry& geometry) const { return start - geometry.decoderDelay; }
    std::int64_t padding(const Geometry& geometry) const {
        return frames * geometry.frame - delay(geometry) - length;
    }
    std::int64_t keptFrames() const;
};

/// The layout that keeps the most frames. `needsCarrier` tells whether a source frame's main data
/// begin in the frames before it. Throws platform::Error where a segment lies outside the source.
Layout layOut(const FrameIndex& index, const std::vector<Segment>& plan,
              const std::function<bool(std::int64_t)>& needsCarrier);

/// The layout of a stream that is encoded whole.
Layout layOutEncoded(const Geometry& geometry, std::int64_t length);

}  // namespace audio::mpeg
