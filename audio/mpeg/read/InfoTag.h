// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "audio/mpeg/read/FrameHeader.h"

namespace audio::mpeg {

/// What a Layer III file states about itself in its first frame, which holds no sound: a Xing or
/// Info tag, with LAME's extension where there is one, or a VBRI tag. All offsets are bytes from
/// the start of that frame; an offset of 0 means that the field is not there. Numbers are as the
/// file states them and may lie.
struct InfoTag {
    enum class Kind { Info, Xing, Vbri };
    Kind kind = Kind::Info;
    std::size_t offset = 0;  ///< of the letters "Info", "Xing" or "VBRI"

    std::optional<std::uint32_t> frames;  ///< frames of sound, this one not counted
    std::optional<std::uint32_t> bytes;   ///< from this frame's first byte to the end of the sound
    std::optional<std::uint32_t> quality;
    std::size_t framesOffset = 0;   ///< 4 bytes
    std::size_t bytesOffset = 0;    ///< 4 bytes
    std::size_t tocOffset = 0;      ///< Xing/Info: 100 bytes
    std::size_t qualityOffset = 0;  ///< 4 bytes

    std::size_t lameOffset = 0;  ///< of the extension: its encoder name
    bool extended = false;       ///< the extension is there with all of its 36 bytes
    std::string encoder;         ///< the extension's nine bytes of name and version
    int vbrMethod = 0;           ///< 1 CBR, 2 ABR, 3 to 6 VBR, 8 CBR two passes, 9 ABR two passes
    int statedKbps = 0;          ///< ABR: what was asked for, 255 for that or more; VBR: the least
    // Of encoders whose word decoders take: LAME, and FFmpeg in its names of then and now (Lavf,
    // Lavc); libavformat/mp3dec.c has the list. An extension may end behind them.
    std::optional<int> delay;    ///< encoder delay in samples, without the decoder's
    std::optional<int> padding;  ///< samples appended to fill the last frame
    std::uint32_t musicLength = 0;
    std::uint16_t musicCrc = 0;
    std::uint16_t tagCrc = 0;

    // Where the extension's fields lie, from lameOffset.
    static constexpr std::size_t methodField = 9, lowpassField = 10, peakField = 11,
                                 trackGainField = 15, albumGainField = 17, flagsField = 19,
                                 bitRateField = 20, delayField = 21, miscField = 24,
                                 mp3GainField = 25, presetField = 26, musicLengthField = 28,
                                 musicCrcField = 32, tagCrcField = 34, extensionSize = 36;

    /// Whether the tag can state how the sound lies in the frames, to every decoder.
    bool canStateGaps() const { return extended && framesOffset && delay; }

    /// Reads the tag of a whole frame; nothing where it holds none and thus is sound. A tag that
    /// counts neither frames nor bytes is none: decoders play its frame.
    static std::optional<InfoTag> parse(const FrameHeader& header,
                                        std::span<const std::uint8_t> frame);
};

}  // namespace audio::mpeg
