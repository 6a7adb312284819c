// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace support {

/// While it lives, nobody can change or replace this file: not its owner, and, where the tests run
/// as the administrator, not even that one.
class Unwritable {
  public:
    /// Fails the test in hand where the system cannot do it.
    explicit Unwritable(const std::filesystem::path& file);
    ~Unwritable();
    Unwritable(const Unwritable&) = delete;
    Unwritable& operator=(const Unwritable&) = delete;

  private:
    std::filesystem::path file_;
};

}  // namespace support
