// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/Carrier.h"

#include "audio/tags/AiffChunks.h"
#include "audio/tags/AsfHeader.h"
#include "audio/tags/FlacBlocks.h"
#include "audio/tags/Mp4Atoms.h"
#include "audio/tags/MpegTags.h"
#include "audio/tags/OggFlacBlocks.h"
#include "audio/tags/WavPackWrapper.h"
#include "audio/tags/WaveChunks.h"

namespace audio::tags {

Carrier carrierFor(const Format& format) {
    const std::string& name = format.containerName;
    if (format.container == Container::Asf)
        return [](const Carriage& carriage, platform::file::Replacement& file) {
            writeWithAsfMetadata(carriage.encoded, carriage.source, carriage.levels, file);
        };
    if (format.container == Container::Wav && format.codec != Codec::Pcm)
        return writeWithWaveChunks;
    if (format.container == Container::Ogg && format.codecName == "flac")
        return writeWithOggFlacBlocks;
    if (name == "flac") return writeWithFlacBlocks;
    if (name == "aiff") return writeWithAiffChunks;
    if (name.starts_with("mov,mp4,m4a")) return writeWithMp4Atoms;
    if (name == "wv") return writeWithWavPackTags;
    if (name == "aac" || name == "tta") return writeBetweenTags;
    return nullptr;
}

}  // namespace audio::tags
