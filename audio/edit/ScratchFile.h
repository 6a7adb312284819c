// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace audio::edit {

/// An empty file of its own in the folder for scratch files, which goes with the value.
class ScratchFile {
  public:
    /// In `folder`, or where that is empty in the system's own. Throws platform::Error.
    explicit ScratchFile(const std::filesystem::path& folder);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace audio::edit
