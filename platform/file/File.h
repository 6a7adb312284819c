// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <system_error>

#include "platform/file/FileId.h"

namespace platform::file {

/// One open file of the system, closed with the value. The functions answer whether they succeeded
/// and fill `error` where they did not; the callers know the sentence that belongs to it. Others
/// may read, replace and remove a file that is open here. One thread at a time.
class File {
  public:
    File() = default;
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool openForReading(const std::filesystem::path& path, std::error_code& error);
    /// Creates the file, with the mode any new file gets; fails where it exists. While it is open,
    /// removeUnheld() leaves it alone.
    bool createNew(const std::filesystem::path& path, std::error_code& error);
    /// Creates the file, or empties it where it exists.
    bool openForWriting(const std::filesystem::path& path, std::error_code& error);
    void close();

    /// Reads exactly these bytes; a file that ends before is an error.
    bool readAt(std::int64_t position, std::span<std::byte> bytes, std::error_code& error) const;
    /// Reads what there is, at most these bytes: how many, 0 at the end.
    std::optional<std::size_t> readSome(std::int64_t position, std::span<std::byte> bytes,
                                        std::error_code& error) const;
    bool writeAt(std::int64_t position, std::span<const std::byte> bytes, std::error_code& error);
    bool resize(std::int64_t size, std::error_code& error);
    /// Copies exactly `size` bytes inside the system. Where the file system can share blocks
    /// between files, those that lie alike in both are shared and not copied.
    bool copyFrom(const File& source, std::int64_t offset, std::int64_t size, std::int64_t position,
                  std::error_code& error);

    std::optional<Stamp> stamp(std::error_code& error) const;
    /// Mode, access lists and extended attributes of another file, and its owner and group as far
    /// as this user may give them; where the group cannot be kept, it gets no more rights than
    /// anybody has. On Windows nothing: replace() keeps them there.
    bool copyAttributesOf(const std::filesystem::path& other, std::error_code& error);
    /// The permissions of another file as a new file of this user may have them, and its times,
    /// where the file system can hold them.
    void copyModeAndTimesOf(const File& other);
    /// To the disk, not only to the system.
    bool sync(std::error_code& error);
    /// Puts this file, which lies at `from`, in the place of `to` in one step. After an error both
    /// are as they were; should the system have taken `to` away, `from` is still there. On Windows
    /// the file is closed by it.
    bool replace(const std::filesystem::path& from, const std::filesystem::path& to,
                 std::error_code& error);

  private:
    void wrote(std::int64_t bytes);

    std::intptr_t handle_ = -1;
    std::int64_t waiting_ = 0;  ///< bytes written since the disk was last set to work
};

/// The stamp of the file behind a path, links followed.
std::optional<Stamp> stampOf(const std::filesystem::path& path, std::error_code& error);

/// Makes names that were given or taken away in a folder durable, where the system needs to be
/// told. What cannot be told changes nothing.
void syncFolder(const std::filesystem::path& folder);

/// Whether the user may write to an existing file.
bool isWritable(const std::filesystem::path& path);

/// Removes what createNew() made where no process has it open any more. Only an ordinary file of
/// this user under this one name; whatever else lies there, or cannot be told, stays.
void removeUnheld(const std::filesystem::path& path);

}  // namespace platform::file
