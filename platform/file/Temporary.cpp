// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Temporary.h"

#include <algorithm>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Paths.h"
#include "platform/file/File.h"

namespace platform::file {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".tracksmith-";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t letterCount = 12;

// Exactly what temporaryBeside() makes: the prefix, the letters, and at most one extension.
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

}  // namespace

fs::path temporaryBeside(const fs::path& target) {
    std::random_device random;
    std::string name(prefix);
    for (std::size_t i = 0; i < letterCount; ++i) name += letters[random() % letters.size()];
    fs::path sibling = target.parent_path() / name;
    sibling += target.extension();
    return sibling;
}

void removeLeftovers(const fs::path& folder) noexcept {
    try {
        if (!isFirstLook(folder)) return;
        std::vector<fs::path> found;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            if (isTemporaryName(toUtf8(entry.path().filename()))) found.push_back(entry.path());
        std::ranges::for_each(found, removeUnheld);
    } catch (const std::exception&) {
        // A folder that cannot be looked through keeps what it has.
    }
}

}  // namespace platform::file
