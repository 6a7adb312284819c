// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

#include <QString>

namespace test {

/// A program put where the window looks for one of its companions. When it is started it records
/// how many arguments it got and what it found in a hand-off file at that moment. It goes with the
/// value. The test program must link PrivateFolder.cpp.
class Companion {
  public:
    /// `relative` to the application folder, with slashes; `handoffFile` may not exist.
    Companion(const std::string& relative, const QString& handoffFile = {});
    ~Companion();
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    /// Waits until it has been started and has recorded; false where that does not happen.
    bool started() const;
    /// Whether it has been started so far.
    bool hasStarted() const;
    int arguments() const;
    std::string found() const;  ///< "none" where there was no file

  private:
    std::filesystem::path program_;
    std::filesystem::path record_;
};

}  // namespace test
