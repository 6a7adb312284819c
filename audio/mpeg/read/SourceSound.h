// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "audio/mpeg/read/FrameDecoder.h"
#include "audio/mpeg/read/FrameIndex.h"
#include "platform/file/WindowReader.h"

namespace audio::mpeg {

/// The decoded sound of a spliceable MPEG file by raw sample, cheapest when read onwards. One
/// thread at a time.
class SourceSound {
  public:
    /// The index must outlive it. Throws platform::Error where the file cannot be opened.
    SourceSound(const std::filesystem::path& file, const FrameIndex& index);

    /// Fills interleaved floats with raw samples [from, from + count); outside the file, silence.
    void read(std::int64_t from, std::size_t count, float* interleaved);

  private:
    void decodeFrame(std::int64_t frame);
    std::int64_t preRoll(std::int64_t frame);

    const FrameIndex& index_;
    platform::file::WindowReader reader_;
    FrameDecoder decoder_;
    std::vector<float> decoded_;  // of the frame decodedFrame_
    std::int64_t decodedFrame_ = -1;
};

}  // namespace audio::mpeg
