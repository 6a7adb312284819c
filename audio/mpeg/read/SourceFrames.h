// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include "audio/mpeg/read/FrameIndex.h"
#include "audio/mpeg/read/SideInfo.h"
#include "platform/file/WindowReader.h"

namespace audio::mpeg {

/// The frames of a source, as they are. One thread.
class SourceFrames {
  public:
    SourceFrames(const std::filesystem::path& file, const FrameIndex& index);

    const FrameIndex& index() const { return index_; }
    /// Valid until the next call, as with every span given here.
    std::span<const std::uint8_t> bytes(std::int64_t frame);
    std::span<const std::uint8_t> bytes(ByteRange range);
    /// Layer III only.
    SideInfo sideInfo(std::int64_t frame);
    /// The main data before the frame's slot that belong to it and those behind: main_data_begin
    /// bytes, or nothing where the file has not all of them.
    std::optional<std::vector<std::uint8_t>> reservoir(std::int64_t frame);

  private:
    const FrameIndex& index_;
    platform::file::WindowReader reader_;
};

}  // namespace audio::mpeg
