// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Temporary.h"

#include <algorithm>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Paths.h"
#include "platform/file/Move.h"

namespace platform::file {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".tracksmith-";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t letterCount = 12;

fs::path newName(const fs::path& folder, const fs::path& extension) {
    std::random_device random;
    std::string name(prefix);
    for (std::size_t i = 0; i < letterCount; ++i) name += letters[random() % letters.size()];
    fs::path path = folder / name;
    path += extension;
    return path;
}

// Exactly what newName() makes: the prefix, the letters, and at most one extension.
bool isTemporaryName(std::string_view name) {
    if (!name.starts_with(prefix) || name.size() < prefix.size() + letterCount) return false;
    const std::string_view random = name.substr(prefix.size(), letterCount);
    if (random.find_first_not_of(letters) != std::string_view::npos) return false;
    const std::string_view extension = name.substr(prefix.size() + letterCount);
    return extension.empty() || extension.rfind('.') == 0;
}

// A batch makes thousands of temporaries in one folder, which may hold thousands of files.
bool isFirstLook(const fs::path& folder) {
    static std::mutex mutex;
    static std::set<fs::path> seen;
    const std::lock_guard lock(mutex);
    return seen.insert(folder).second;
}

// A folder that cannot be looked through keeps what it has.
void sweep(const fs::path& folder) noexcept {
    try {
        if (!isFirstLook(folder)) return;
        std::vector<fs::path> found;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            if (isTemporaryName(toUtf8(entry.path().filename()))) found.push_back(entry.path());
        std::ranges::for_each(found, removeUnheld);
    } catch (const std::exception&) {
    }
}

}  // namespace

Temporary::~Temporary() {
    file_.close();
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
}

bool Temporary::create(const fs::path& folder, const fs::path& extension, std::error_code& error) {
    const fs::path place = folder.empty() ? fs::path(".") : folder;
    sweep(place);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const fs::path name = newName(place, extension);
        if (file_.createNew(name, error)) {
            path_ = name;
            error.clear();
            return true;
        }
        if (error != std::errc::file_exists) return false;
    }
    return false;
}

// Closed last: until the file has its new name, the sweep of another process must find it held.
bool Temporary::replace(const fs::path& target, Sync sync, std::error_code& error) {
    if (!file_.replace(path_, target, error)) return false;
    path_.clear();
    if (sync == Sync::Now) syncFolder(target.parent_path());
    file_.close();
    return true;
}

bool Temporary::take(const fs::path& target, Sync sync, std::error_code& error) {
    error = tryRename(path_, target);
    if (error) return false;
    path_.clear();
    if (sync == Sync::Now) syncFolder(target.parent_path());
    file_.close();
    return true;
}

fs::path Temporary::keep() {
    file_.close();
    const fs::path name = std::exchange(path_, {});
    fs::path kept = name.parent_path() / name.stem();
    kept += "-kept";
    kept += name.extension();
    return tryRename(name, kept) ? name : kept;
}

}  // namespace platform::file
