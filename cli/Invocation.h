// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "cli/Report.h"

namespace cli {

/// One call of the program: the options that every command shares, and its report. Commands keep a
/// reference to it; it outlives the parsing and the command that the parsing runs.
class Invocation {
  public:
    Invocation(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

    bool json = false;  ///< --json: one JSON object a line, for programs

    /// In the style that the options and the terminal ask for. Call it once the options are read.
    Report& report();

    /// 0 = all done, 1 = some files failed.
    int exitCode() const;

  private:
    std::ostream& out_;
    std::ostream& err_;
    std::optional<Report> report_;
};

}  // namespace cli
