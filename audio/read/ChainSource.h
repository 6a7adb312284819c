// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "audio/ffmpeg/Input.h"
#include "audio/read/Source.h"

namespace audio::read {

/// Reads a chained Ogg file as one sound: its links one after the other, each by a source of its
/// own. The first link says what the sound is; one of another rate or number of channels, which
/// would need resampling, is refused.
class ChainSource : public Decoder::Source {
  public:
    ChainSource(const std::filesystem::path& file, const std::vector<FilePart>& links);

    std::int64_t frames() override;
    std::int64_t estimatedFrames() const override;
    std::size_t read(float* interleaved, std::size_t frames) override;
    void seek(std::int64_t frame) override;
    std::int64_t position() const override { return position_; }

  private:
    std::vector<std::unique_ptr<Decoder::Source>> links_;
    std::size_t current_ = 0;
    std::int64_t position_ = 0;
};

}  // namespace audio::read
