// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ogg/ogg.h>
#include <vorbis/codec.h>

#include "audio/codec/OutputFile.h"
#include "audio/codec/Sink.h"

namespace audio::codec {

/// Writes Ogg Vorbis with libvorbis, at the nominal bit-rate asked for (variable, unmanaged). The
/// comment header can be given as a packet, and is then written as it stands.
class VorbisSink : public Encoder::Sink {
  public:
    VorbisSink(const std::filesystem::path& file, const Format& format,
               const EncoderOptions& options);

    void write(const float* interleaved, std::size_t frames) override;
    void finish() override;

  private:
    void writeHeaders(const EncoderOptions& options);
    void drain();
    void putPages(bool flush);

    OutputFile output_;
    std::size_t channels_;
    bool begun_ = false;
    /// The libraries' objects, which refer to one another and go together.
    struct State {
        State();
        ~State();
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        vorbis_info info{};
        vorbis_comment comment{};
        vorbis_dsp_state dsp{};
        vorbis_block block{};
        ogg_stream_state stream{};
    };
    State state_;
};

}  // namespace audio::codec
