// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <system_error>

#include "platform/file/File.h"

namespace platform::file {

/// Whether something has to be on the disk before the program goes on.
enum class Sync { Later, Now };

/// A file that is not finished: of a save, a list, a copy, or scratch sound. Its name is hidden
/// where a leading dot hides (".tracksmith-" and twelve letters), and it is held by a lock that
/// goes with the process; it is removed with the value, unless it took a place. What a killed
/// process left behind is removed by the next one that creates a temporary in the folder: ordinary
/// files of this user, under such a name, that nobody holds. One thread at a time.
class Temporary {
  public:
    Temporary() = default;
    ~Temporary();
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    /// Creates it, empty. `extension` (".mp3" or empty) is what some readers go by.
    bool create(const std::filesystem::path& folder, const std::filesystem::path& extension,
                std::error_code& error);

    const std::filesystem::path& path() const { return path_; }
    File& file() { return file_; }

    /// Takes the place of `target`, or its free name, in one step, and closes it. After an error
    /// both are as they were.
    bool replace(const std::filesystem::path& target, Sync sync, std::error_code& error);
    /// Takes a name that is free, and never another.
    bool take(const std::filesystem::path& target, Sync sync, std::error_code& error);
    /// Closes it and leaves it in the folder under a name that nobody sweeps: that name.
    std::filesystem::path keep();

  private:
    File file_;
    std::filesystem::path path_;  ///< empty where there is nothing to be removed
};

}  // namespace platform::file
