// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <vorbis/codec.h>

#include "audio/vorbis/StreamHeaders.h"

namespace audio::vorbis {

/// How libvorbis is told to make a certain set-up header.
struct EncoderSetup {
    int channels = 0;
    long sampleRate = 0;
    long nominalBitRate = -1;  ///< bit/s; -1: `quality` counts
    float quality = 0;         ///< -0.1 to 1
    bool managed = false;      ///< tries several sizes for each packet
};

/// An encoder of libvorbis. One thread at a time.
class LibraryEncoder {
  public:
    /// Throws CannotSplice where the library has no such set-up.
    explicit LibraryEncoder(const EncoderSetup& setup);
    ~LibraryEncoder();
    LibraryEncoder(const LibraryEncoder&) = delete;
    LibraryEncoder& operator=(const LibraryEncoder&) = delete;

    vorbis_dsp_state& dsp() { return dsp_; }
    /// The set-up header that goes with its packets.
    PacketBytes setupHeader();

  private:
    vorbis_info info_{};
    vorbis_dsp_state dsp_{};
};

/// The set-up that gives these very headers: by the nominal bit-rate that the stream states, which
/// leads back to the exact quality; where it states none, all qualities are tried. A managed one if
/// that gives them too: at low rates it has other code books. Nothing where another encoder made
/// the stream (or libvorbis before 2004, or with options that shape the set-up header).
std::optional<EncoderSetup> matchingSetup(const StreamHeaders& headers);

}  // namespace audio::vorbis
