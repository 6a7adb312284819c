// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <span>
#include <vector>

#include "audio/mpeg/read/FrameDecoder.h"
#include "audio/mpeg/read/SourceSound.h"

namespace audio::mpeg {

/// Decodes what was written around every seam, and compares the kept frames there with the
/// source's, sample for sample, so that no stream with a broken reservoir is ever handed out. One
/// thread.
class SeamCheck {
  public:
    SeamCheck(const std::filesystem::path& file, const FrameIndex& index);

    /// Every frame of the new stream, in order.
    void frame(std::int64_t number, std::span<const std::uint8_t> bytes);
    /// Frames [first, first + count) will have to decode as the source's from `sourceFirst` on; to
    /// be called before the last of them was written. Throws CannotSplice, here or later, where
    /// not.
    void expectKept(std::int64_t first, std::int64_t count, std::int64_t sourceFirst);
    /// Throws CannotSplice where something expected never came.
    void finish() const;

  private:
    struct Expectation {
        std::int64_t first = 0;
        std::int64_t count = 0;
        std::int64_t sourceFirst = 0;
    };
    void check(const Expectation& expected);
    std::size_t decodedFrom(std::size_t first) const;

    std::int64_t samples_;
    std::size_t channels_;
    SourceSound source_;
    FrameDecoder decoder_;
    std::deque<std::vector<std::uint8_t>> last_;
    std::int64_t next_ = 0;  // number of the frame behind the last one seen
    std::deque<Expectation> open_;
};

}  // namespace audio::mpeg
