// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fstream>
#include <vector>

#include "audio/read/Source.h"
#include "audio/wave/Layout.h"

namespace audio::read {

/// Reads the PCM of a WAVE file, straight from its data chunk.
class WaveSource : public Decoder::Source {
  public:
    /// The layout is that of the file, and holds plain PCM.
    WaveSource(const std::filesystem::path& file, const wave::Layout& layout);

    std::int64_t frames() override { return frames_; }
    std::int64_t estimatedFrames() const override { return frames_; }
    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;
    std::int64_t position() const override { return position_; }
    bool hasPcm() const override { return true; }
    std::size_t readPcm(std::byte* bytes, std::size_t frames) override;

  private:
    std::filesystem::path file_;
    std::ifstream stream_;
    std::int64_t data_ = 0;  ///< where the sound begins in the file
    std::int64_t frames_ = 0;
    std::int64_t position_ = 0;
    std::int64_t streamAt_ = -1;  ///< the frame the stream stands at
    std::size_t frameBytes_ = 0;
    std::vector<std::byte> block_;
};

}  // namespace audio::read
