// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "audio/codec/Sink.h"
#include "audio/wave/Writer.h"

namespace audio::codec {

/// Writes PCM into a WAVE file.
class WaveSink : public Encoder::Sink {
  public:
    WaveSink(const std::filesystem::path& file, const Format& format,
             const EncoderOptions& options);

    void write(const float* interleaved, std::size_t frames) override;
    void writePcm(const std::byte* bytes, std::size_t frames) override;
    void finish() override { writer_.finish(); }

  private:
    SampleType type_;
    std::size_t channels_;
    wave::Writer writer_;
    std::vector<std::byte> block_;
};

}  // namespace audio::codec
