// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/FileSizeLimit.h"

namespace test {

void writeFile(const std::filesystem::path& file, const std::string& bytes);
std::string readFile(const std::filesystem::path& file);

/// Bytes without a pattern, the same in every run.
std::string noise(std::size_t size);

/// The names in a folder, sorted.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

/// A new folder on another file system than the given one's, removed with the value.
class FolderElsewhere {
  public:
    explicit FolderElsewhere(const std::filesystem::path& here);
    ~FolderElsewhere();
    FolderElsewhere(const FolderElsewhere&) = delete;
    FolderElsewhere& operator=(const FolderElsewhere&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

using support::FileSizeLimit;

/// The text of the platform::Error that a call throws; empty where it throws none.
template <class Call>
std::string errorOf(Call&& call);

}  // namespace test

#include "platform/Error.h"

template <class Call>
std::string test::errorOf(Call&& call) {
    try {
        call();
    } catch (const platform::Error& error) {
        return error.what();
    }
    return {};
}
