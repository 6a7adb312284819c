// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Invocation.h"

#include "platform/Terminal.h"

namespace cli {

Report& Invocation::report() {
    if (!report_) {
        const auto lines = platform::onTerminal() ? Report::Style::Terminal : Report::Style::Plain;
        report_.emplace(json ? Report::Style::Json : lines, out_, err_);
    }
    return *report_;
}

int Invocation::exitCode() const {
    return report_ && report_->failures() > 0 ? 1 : 0;
}

}  // namespace cli
