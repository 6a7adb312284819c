// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Copy.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/File.h"
#include "platform/file/Regular.h"

namespace fs = std::filesystem;

namespace platform::file {
namespace {

/// Refuses what would fail, or do harm, at the end of a long copy.
void check(const std::string& what, const fs::path& source, const fs::path& target,
           Existing existing) {
    if (const std::error_code reason = reasonAgainst(source)) throw systemError(what, reason);
    const std::error_code there = reasonAgainst(target);
    if (there == std::errc::no_such_file_or_directory) return;
    if (there && there != notRegular()) throw systemError(what, there);
    if (isSameFile(source, target)) throw Error(what + ": both are the same file.");
    if (existing == Existing::Refuse) throw Error(what + ": a file of that name exists.");
    if (there) throw Error(what + ": the target is not a regular file.");
    if (!isWritable(target)) throw Error(what + ": the target is read-only.");
}

/// The bytes of one open file on their way into another that is empty.
class Content {
  public:
    Content(const File& source, File& target, const CopyProgress& progress)
        : source_(source), target_(target), progress_(progress) {}

    bool copy(std::error_code& error) {
        const auto about = source_.stamp(error);
        if (!about) return false;
        total_ = about->size;
        while (copied_ < total_) {
            const std::int64_t count = std::min(stretch, total_ - copied_);
            if (!target_.copyFrom(source_, copied_, count, copied_, error) ||
                !advance(count, error))
                return false;
        }
        return copyRest(error);
    }

  private:
    /// What a file holds beyond the size that the system tells.
    bool copyRest(std::error_code& error) {
        std::vector<std::byte> buffer(std::size_t{1} << 20);
        for (;;) {
            const auto got = source_.readSome(copied_, buffer, error);
            if (!got || *got == 0) return got.has_value();
            if (!target_.writeAt(copied_, std::span(buffer).first(*got), error) ||
                !advance(static_cast<std::int64_t>(*got), error))
                return false;
        }
    }

    bool advance(std::int64_t count, std::error_code& error) {
        copied_ += count;
        if (!progress_ || progress_(copied_, total_)) return true;
        error = std::make_error_code(std::errc::operation_canceled);
        return false;
    }

    static constexpr std::int64_t stretch = std::int64_t{16} << 20;
    const File& source_;
    File& target_;
    const CopyProgress& progress_;
    std::int64_t copied_ = 0;
    std::int64_t total_ = 0;
};

}  // namespace

void copy(const fs::path& source, const fs::path& target, Existing existing,
          const CopyProgress& progress, Sync sync) {
    const std::string what =
        "“" + toUtf8(source) + "” could not be copied to “" + toUtf8(target) + "”";
    check(what, source, target, existing);
    std::error_code reason;
    File from;
    Temporary temporary;
    File& to = temporary.file();
    const auto place = [&] {
        return existing == Existing::Refuse ? temporary.take(target, sync, reason)
                                            : temporary.replace(target, sync, reason);
    };
    if (!from.openForReading(source, reason) ||
        !temporary.create(target.parent_path(), ".part", reason) ||
        !Content(from, to, progress).copy(reason))
        throw systemError(what, reason);
    to.copyModeAndTimesOf(from);
    if ((sync == Sync::Now && !to.sync(reason)) || !place()) throw systemError(what, reason);
}

}  // namespace platform::file
