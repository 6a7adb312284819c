// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/ogg/PageWriter.h"
#include "audio/vorbis/VorbisChunks.h"
#include "audio/write/OutputFile.h"
#include "audio/write/Sink.h"

namespace audio::write {

/// Writes Ogg Vorbis with libvorbis, at the nominal bit-rate asked for (variable, unmanaged), on
/// every core. The comment header can be given as a packet, and is then written as it stands. The
/// bytes depend on the sound, the format and the options alone, never on the number of threads.
class VorbisSink : public Encoder::Sink {
  public:
    VorbisSink(const std::filesystem::path& file, const Format& format,
               const EncoderOptions& options);
    VorbisSink(const std::filesystem::path& file, const Format& format,
               const EncoderOptions& options, const vorbis::VorbisChunking& chunking);

    void write(const float* interleaved, std::size_t frames) override;
    void finish() override;

    /// Chunks that did not fit to the one before, and were done again behind it.
    int chunksDoneAgain() const { return chunks_.carriedOn(); }

  private:
    void writeHeaders(const EncoderOptions& options);
    void put(const vorbis::VorbisPacket& packet);

    OutputFile output_;
    std::size_t channels_;
    std::int64_t frames_ = 0;  // written
    ogg::PageWriter pages_;
    vorbis::VorbisChunks chunks_;
};

}  // namespace audio::write
