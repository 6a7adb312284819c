// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

namespace platform {

/// The one exception that the engines and everything below them throw. Its text is a whole
/// sentence for a person, in UTF-8, that names the file and the reason.
class Error : public std::runtime_error {
  public:
    explicit Error(const std::string& sentence) : std::runtime_error(sentence) {}
};

}  // namespace platform
