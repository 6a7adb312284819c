// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <lame/lame.h>

#include "audio/write/Mp3InfoFrame.h"
#include "audio/write/OutputFile.h"
#include "audio/write/Sink.h"

namespace audio::write {

/// Writes MP3 with LAME: an Info frame, which states delay and padding so that players and decoders
/// find the exact length, then the sound; no tags.
class Mp3Sink : public Encoder::Sink {
  public:
    Mp3Sink(const std::filesystem::path& file, const Format& format);

    void write(const float* interleaved, std::size_t frames) override;
    void finish() override;

  private:
    struct LameFree {
        void operator()(lame_global_flags* lame) const { lame_close(lame); }
    };
    void configure(const Format& format);
    void take(int bytes);
    void begin(std::span<const unsigned char> encoded);

    OutputFile output_;
    std::unique_ptr<lame_global_flags, LameFree> lame_;
    std::size_t channels_;
    float gain_ = 1;  ///< undoes the scaling that LAME does by itself
    std::vector<float> left_;
    std::vector<float> right_;
    std::vector<unsigned char> encoded_;
    bool begun_ = false;
    std::optional<Mp3InfoFrame> ownInfo_;  ///< where LAME writes none
};

}  // namespace audio::write
