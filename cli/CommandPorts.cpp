// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CommandPorts.h"

#include <algorithm>

#include "cli/Report.h"
#include "lists/Names.h"
#include "platform/Interrupt.h"

namespace cli {

QString ListedFiles::entryName(int entry) const {
    return lists::nameOf(entryPath(entry));
}

void ReportBar::begin(std::size_t file, int round) {
    file_ = file;
    round_ = round;
    fraction_ = 0;
}

void ReportBar::setFraction(double fraction) {
    fraction_ = std::max(fraction_, fraction);
    report_.progress(file_, (round_ + fraction_) / rounds_);
}

bool Interrupt::closing() const {
    return platform::interrupted();
}

}  // namespace cli
