// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Seconds.h"

#include <cmath>
#include <string>

#include <CLI/CLI.hpp>

namespace cli {
namespace {

constexpr double shortest = 0.001;
constexpr double longest = 2'000'000;

// CLI::Range lets through what is neither below nor above: no number at all.
std::string reasonAgainst(const std::string& typed) {
    double seconds = 0;
    const bool isNumber = CLI::detail::lexical_cast(typed, seconds);
    if (isNumber && seconds >= shortest && seconds <= longest) return {};
    return "\"" + typed + "\" is no number of seconds from 0.001 to 2000000";
}

}  // namespace

CLI::Validator lengthInSeconds() {
    return CLI::Validator([](std::string& typed) { return reasonAgainst(typed); }, "SECONDS");
}

std::int32_t toMilliseconds(double seconds) {
    return static_cast<std::int32_t>(std::lround(seconds * 1000));
}

}  // namespace cli
