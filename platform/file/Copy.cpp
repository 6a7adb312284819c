// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Copy.h"

#include <random>
#include <string>

#include <QtGlobal>

#include "platform/Paths.h"
#include "platform/SystemError.h"
#include "platform/file/CopyBytes.h"
#include "platform/file/Rename.h"

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace platform::file {
namespace {

/// A name in the target's folder that is removed again unless the file under it was taken over.
class Temporary {
  public:
    explicit Temporary(const fs::path& folder) : path_(folder / uniqueName()) {}
    ~Temporary() {
        std::error_code ignored;
        if (!taken_) fs::remove(path_, ignored);
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    const fs::path& path() const { return path_; }

    std::error_code rename(const fs::path& target, Existing existing) {
        std::error_code reason;
        if (existing == Existing::Refuse)
            reason = tryRename(path_, target);
        else
            fs::rename(path_, target, reason);
        taken_ = !reason;
        return reason;
    }

  private:
    static std::string uniqueName() {
        std::random_device random;
        return ".tracksmith-copy-" + std::to_string(random()) + std::to_string(random()) + ".part";
    }

    fs::path path_;
    bool taken_ = false;
};

bool mayBeReplaced(const fs::path& file) {
#ifdef Q_OS_WIN
    const DWORD attributes = GetFileAttributesW(file.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY);
#else
    return ::access(file.c_str(), W_OK) == 0;
#endif
}

/// Refuses what would fail, or do harm, at the end of a long copy.
void check(const std::string& what, const fs::path& source, const fs::path& target,
           Existing existing) {
    std::error_code reason;
    const fs::file_status from = fs::status(source, reason);
    if (!fs::exists(from)) throw systemError(what, reason);
    if (!fs::is_regular_file(from)) throw Error(what + ": the source is not a file.");
    const fs::file_status to = fs::status(target, reason);
    if (to.type() == fs::file_type::not_found) return;
    if (!fs::exists(to)) throw systemError(what, reason);
    if (fs::equivalent(source, target, reason)) throw Error(what + ": both are the same file.");
    if (existing == Existing::Refuse) throw Error(what + ": a file of that name exists.");
    if (!fs::is_regular_file(to)) throw Error(what + ": the target is not a file.");
    if (!mayBeReplaced(target)) throw Error(what + ": the target is read-only.");
}

}  // namespace

void copy(const fs::path& source, const fs::path& target, Existing existing,
          const CopyProgress& progress) {
    const std::string what =
        "“" + toUtf8(source) + "” could not be copied to “" + toUtf8(target) + "”";
    check(what, source, target, existing);
    Temporary temporary(target.parent_path());
    if (const std::error_code reason = copyBytes(source, temporary.path(), progress))
        throw systemError(what, reason);
    if (const std::error_code reason = temporary.rename(target, existing))
        throw systemError(what, reason);
}

}  // namespace platform::file
