// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

#include "platform/file/FileId.h"

namespace platform::file {

/// Replaces a file whole or not at all. It writes to a Temporary in the target's own folder and
/// renames that over the target; the target itself is never opened for writing. Symbolic links are
/// followed first: the file behind them is the target. Until commit() has succeeded the target is
/// as it was, and whatever goes wrong, also a missing commit(), takes the temporary away again,
/// unless the target itself has gone meanwhile. Not for several threads at once. Every error is a
/// platform::Error that names target and step.
class Replacement {
  public:
    /// Creates the empty temporary. Throws where the folder does not allow that, where the target
    /// is no regular file, or where it is write-protected.
    explicit Replacement(const std::filesystem::path& target);
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// The file that will be replaced, links resolved.
    const std::filesystem::path& target() const;
    /// The temporary. Others may write to it by this path, before or between the calls below.
    const std::filesystem::path& temporary() const;

    /// Appends at the write position, which begins at 0.
    void write(std::span<const std::byte> bytes);
    void write(const void* bytes, std::size_t size);
    /// Appends a stretch of another file, by the system's fast path where there is one.
    void copyFrom(const std::filesystem::path& source, std::int64_t offset, std::int64_t size);
    /// The write position: a later write() continues there.
    void seek(std::int64_t position);
    std::int64_t position() const;
    /// Ends the temporary at this place, and continues there.
    void truncate(std::int64_t size);

    /// What others have to say before the file is replaced. Either may throw to refuse it.
    struct Checks {
        /// Looks at the finished temporary.
        std::function<void(const std::filesystem::path& temporary)> verify;
        /// The last word: it closes what still holds the target. When it returns, only the system
        /// can fail.
        std::function<void()> last;
    };

    /// Lets `verify` look at the finished temporary, gives it the target's mode, extended
    /// attributes and, as far as this user may, owner and group, syncs it, asks `last`, renames it
    /// over the target and syncs the folder. A new target gets the mode any new file gets. Returns
    /// the stamp of what now lies there.
    Stamp commit(const Checks& checks = {});

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

/// Puts bytes in the place of a file, or under a new name, through a Replacement.
void replaceWith(const std::filesystem::path& target, std::span<const std::byte> bytes);

}  // namespace platform::file
