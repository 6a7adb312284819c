// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/file/Regular.h"

#include <string>

namespace fs = std::filesystem;

namespace platform::file {
namespace {

class NotRegular : public std::error_category {
  public:
    const char* name() const noexcept override { return "kind of file"; }
    std::string message(int) const override { return "it is not a regular file"; }
};

}  // namespace

std::error_code notRegular() {
    static const NotRegular category;
    return {1, category};
}

std::error_code reasonAgainst(const fs::path& path) {
    std::error_code reason;
    const fs::file_status status = fs::status(path, reason);
    if (fs::is_regular_file(status)) return {};
    if (status.type() == fs::file_type::not_found)
        return std::make_error_code(std::errc::no_such_file_or_directory);
    return fs::exists(status) ? notRegular() : reason;
}

bool isRegular(const fs::path& path) {
    return !reasonAgainst(path);
}

}  // namespace platform::file
