// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace platform::file {

/// Which file of the system this is, under whatever name it is reached: device and inode, on
/// Windows the volume's serial number and the file's index.
struct FileId {
    std::uint64_t volume = 0;
    std::uint64_t number = 0;
    auto operator<=>(const FileId&) const = default;
};

/// The file behind a path, links followed; nothing where there is none, or it cannot be told. A
/// look-up, not a search: "is it one of these?" is asked of a set of FileId.
std::optional<FileId> idOf(const std::filesystem::path& path);

/// Whether both paths lead to one file that exists.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

/// What tells whether a file is still what it was: which one it is, its size, and the time of its
/// last change.
struct Stamp {
    FileId id;  ///< with the number 0 where the file system does not keep numbers (FAT, shares)
    std::int64_t size = 0;
    std::int64_t time = 0;  ///< in the file system's own steps, of at least 100 ns
    bool operator==(const Stamp&) const = default;

    /// Throws platform::Error where there is no such file.
    static Stamp of(const std::filesystem::path& path);
};

}  // namespace platform::file
